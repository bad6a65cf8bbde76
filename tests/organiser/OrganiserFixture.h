#pragma once
// A program folder in a temporary directory with the data folders made,
// a fixed clock and a message sink that records.
#include "IniFixture.h"
#include "organiser/DataFolders.h"
#include "organiser/OrganiserContext.h"
#include "organiser/SortedList.h"

#include <gtest/gtest.h>

namespace mirel::test {

class OrganiserFixture : public IniFixture {
protected:
    FixedClock clock{QDateTime(QDate(2006, 11, 16), QTime(16, 45, 12))};
    Folders folders{dir.file("prog"), QStringLiteral("\\themes\\Default\\")};
    int overviewRefreshes = 0;
    OrganiserContext ctx{folders, ini, clock, sink, [this] { ++overviewRefreshes; }};

    void SetUp() override {
        QDir().mkpath(folders.ProgramDir);
        DataFolders(ctx).bootstrap();
    }
    QString data(const QString& rel) const { return folders.ProgramDir + "/Mirel/" + rel; }
    static QList<QByteArray> texts(const SortedList& list) {
        QList<QByteArray> out;
        for (const ListEntry& e : list.entries())
            out.append(e.text);
        return out;
    }
};

} // namespace mirel::test
