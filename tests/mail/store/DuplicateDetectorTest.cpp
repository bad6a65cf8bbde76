#include "mail/store/DuplicateDetector.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches a digest of a prefix only: mail without an ID that begins like
// earlier mail must not be taken for it.
TEST(MD5HexTest, CoversTheWholeText) {
    const struct {
        QByteArray text;
        const char* digest; // RFC 1321 test suite
    } cases[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(DuplicateDetector::MD5Hex(c.text), QByteArray(c.digest)) << c.text.constData();
}

TEST(MessageIdKeyTest, TakesTheIdBetweenTheBrackets) {
    const struct {
        QByteArray line;
        QByteArray key;
    } cases[] = {
        {"Message-ID: <1234.5678@mail.example.org>", "1234.5678@mail.example.org"},
        {"Message-Id: <mixed@case>", "mixed@case"},
        {"MESSAGE-ID: <upper@case>", "upper@case"},
        {"Message-ID: < a@b >", "a@b"}, // names are trimmed when read back
        {"Message-ID: <>", ""},         // nothing between the brackets
        {"Message-ID: <", ""},          // too short to hold an ID
        {"Message-ID:", ""},
        {"X-Message-ID: <other@header>", ""},
        {"Message-IDs: <not@this>", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(DuplicateDetector::messageIdKey(c.line), c.key) << c.line.constData();

    // An ID an INI key cannot carry is recorded by its digest.
    const QByteArray key = DuplicateDetector::messageIdKey("Message-ID: <CA+x=y@mail.example>");
    EXPECT_EQ(key.size(), 32);
    EXPECT_FALSE(key.contains('='));
}

// Catches: a key written before the store committed (a lost message), a key
// lost when the file is read back (every section, also appended ones, with
// names compared without regard to case), a line cut off by a crash read as
// a key, and a record that never gets compacted.
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
        EXPECT_FALSE(readAll(file).contains("a@x")) << "recorded before the commit";
        EXPECT_TRUE(d.flush());
    }
    EXPECT_TRUE(readAll(file).endsWith("cut@of\r\n[MESID]\r\na@x=1\r\n[MD5]\r\n" +
                                       DuplicateDetector::MD5Hex("no id") + "=1\r\n"));
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
