#include "settings/DebugLog.h"

#include "TestSupport.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

TEST(DebugLog, AppendsStampedLinesOnlyWhenOn) {
    TempDir dir;
    FixedClock clock(QDateTime(QDate(2007, 3, 4), QTime(5, 6, 7)));
    DebugLog log(clock, dir.path());
    log.WriteDebugLog("ignored");
    EXPECT_FALSE(QFile::exists(dir.file("debug.txt")));

    log.setEnabled(true);
    log.WriteDebugLog("POP3 connected");
    clock.advanceSeconds(3600 * 20);
    log.WriteDebugLog("second");
    EXPECT_EQ(readAll(dir.file("debug.txt")),
              QByteArray("2007-03-04 05:06:07 Mirel: POP3 connected\r\n"
                         "2007-03-05 01:06:07 Mirel: second\r\n"));
}
