#include "organiser/TextFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace mirel;

// Catches a folder listing read straight from the directory that lets in
// what the item lists must not show (sub-folders, hidden files, links to
// nothing) or leaves out a link to a file, or orders by case.
TEST(TextFileList, OnlyFilesInOrderWithoutRegardToCase) {
    QTemporaryDir tmp;
    const QString d = tmp.path();
    for (const char* name : {"b.tod", "A.tod", ".hidden", "c.TOD"}) {
        QFile f(d + '/' + name);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    ASSERT_TRUE(QDir(d).mkdir(QStringLiteral("a-folder")));
    ASSERT_TRUE(QFile::link(d + QStringLiteral("/b.tod"), d + QStringLiteral("/B2.tod")));
    ASSERT_TRUE(QFile::link(d + QStringLiteral("/gone"), d + QStringLiteral("/broken.tod")));
    EXPECT_EQ(TextFile::listFolder(d), QStringList({"A.tod", "b.tod", "B2.tod", "c.TOD"}));
    EXPECT_TRUE(TextFile::listFolder(d + QStringLiteral("/missing")).isEmpty());
}
