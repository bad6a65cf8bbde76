#include "mail/store/DuplicateDetector.h"
#include "MailStoreFixture.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches an ID taken from another header or with its brackets, a header
// name compared with case, and an ID an INI key cannot carry kept as it is.
TEST(MessageIdKeyTest, TakesTheIdBetweenTheBrackets) {
    for (const QJsonValue r : jsonTestData("mail/duplicate-keys.json")["messageIdKey"].toArray())
        EXPECT_EQ(DuplicateDetector::messageIdKey(r[0].toString().toLatin1()),
                  r[1].toString().toLatin1())
            << r[0].toString().toStdString();
}

// A key written before the store committed is the receive fault test's.
// Catches: a key kept for a message that was not stored, a key lost when the
// file is read back (every section, also appended ones, with names compared
// without regard to case), a line cut off by a crash read as a key, and a
// record that never gets compacted.
TEST(DuplicateDetectorTest, RecordsOnlyWhatIsFlushedAndReadsItBack) {
    TempDir dir;
    const QString file = dir.file("incomming.ini");
    writeAll(file, "[mesid]\r\nOld@Windows=1\r\n[MD5]\r\n0123=1\r\n[MESID]\r\ncut@of");
    using K = DuplicateDetector::Key;
    const QList<K> fresh =
        DuplicateDetector::keysOf({"Message-ID: <a@x>", "message-id: <a@x>"}, "");
    ASSERT_EQ(fresh, (QList<K>{{"MESID", "a@x"}}));
    {
        DuplicateDetector d(file);
        EXPECT_TRUE(d.isKnown({{"MESID", "old@windows"}}));
        EXPECT_TRUE(d.isKnown({{"MD5", "0123"}}));
        EXPECT_FALSE(d.isKnown({{"MESID", "cut@of"}}));
        d.remember(fresh);
        EXPECT_TRUE(d.isKnown(fresh));
        d.dropPending(); // its message was not stored after all
        EXPECT_FALSE(d.isKnown(fresh));
        d.remember(fresh);
        d.remember(DuplicateDetector::keysOf({"From: b"}, "no id"));
        EXPECT_TRUE(d.flush());
    }
    // The digest is MD5 in lower-case hex, as records written before hold it.
    EXPECT_TRUE(readAll(file).endsWith("cut@of\r\n[MESID]\r\na@x=1\r\n[MD5]\r\n"
                                       "3932bee1adac35220ca93d35a2b2d5c6=1\r\n"));
    DuplicateDetector again(file);
    EXPECT_TRUE(again.isKnown({{"MESID", "A@X"}}));
    EXPECT_TRUE(again.isKnown(DuplicateDetector::keysOf({}, "no id")));

    // Appending far past the size of the rest rewrites one section each.
    for (int i = 0; i < 3000; ++i) {
        again.remember({{"MESID", "many-" + QByteArray::number(i) + "@example.org"}});
        EXPECT_TRUE(again.flush());
    }
    const QByteArray all = readAll(file);
    EXPECT_LT(all.count("[MESID]"), 2000);
    DuplicateDetector last(file);
    EXPECT_TRUE(last.isKnown({{"MESID", "old@windows"}}));
    EXPECT_TRUE(last.isKnown({{"MESID", "many-2999@example.org"}}));
}

} // namespace
