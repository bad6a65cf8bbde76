#include "mail/store/DuplicateDetector.h"
#include "TestSupport.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

TEST(MD5HexTest, CoversExactlyFourteenBytesPaddedWithZeros) {
    const struct {
        QByteArray text;
        const char* digest; // RFC 1321 MD5 of the 14 bytes the rule takes
    } cases[] = {
        {"abcdefghijklmnopqrst", "0845a5972cd9ad4a46bad66f1253581f"}, // of "abcdefghijklmn"
        {"abcdefghijklmn", "0845a5972cd9ad4a46bad66f1253581f"},
        {"abcdefghijklm", "bf7deab099c5210367e068dea453e566"}, // one zero byte added
        {"Hi", "a351e72e6ed143e0b83efb66039d3780"},
        {"", "36df9540a5ef4996a9737657e4a8929c"},
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
        {"Message-ID: <>", ""}, // nothing between the brackets
        {"Message-ID: <", ""},  // too short to hold an ID
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

class DuplicateDetectorTest : public ::testing::Test {
  protected:
    TempDir dir;
    RecordingMessageSink sink;
    SettingsStore settings{dir.file("config")};
    IniHelpers ini{sink, settings};
    DuplicateDetector detector{ini, dir.file("incomming.ini")};
};

TEST_F(DuplicateDetectorTest, RecordsEachMessageOnceByIdOrDigest) {
    const QList<QByteArray> withId{"From: a@b", "Message-ID: <one@example.org>"};
    EXPECT_FALSE(detector.IsDuplicateMessage(withId, "body one"));
    EXPECT_TRUE(detector.IsDuplicateMessage(withId, "a different body"));
    EXPECT_EQ(readAll(dir.file("incomming.ini")), QByteArray("[MESID]\r\none@example.org=1\r\n"));

    // Without an ID, the first 14 bytes of the body decide.
    const QList<QByteArray> noId{"From: a@b"};
    EXPECT_FALSE(detector.IsDuplicateMessage(noId, "Same fourteen! and then one ending"));
    EXPECT_TRUE(detector.IsDuplicateMessage(noId, "Same fourteen! and then another"));
    EXPECT_FALSE(detector.IsDuplicateMessage(noId, "Other fourteen"));
    EXPECT_TRUE(readAll(dir.file("incomming.ini")).contains("[MD5]\r\n"));

    // A second Message-ID line is checked too: known by either.
    EXPECT_FALSE(detector.IsDuplicateMessage({"Message-ID: <two@x>", "Message-ID: <three@x>"}, ""));
    EXPECT_TRUE(detector.IsDuplicateMessage({"Message-ID: <new@x>", "Message-ID: <three@x>"}, ""));

    // An ID with "=" is found again on the next fetch.
    const QList<QByteArray> awkward{"Message-ID: <CA+x=y@mail.example>"};
    EXPECT_FALSE(detector.IsDuplicateMessage(awkward, ""));
    EXPECT_TRUE(detector.IsDuplicateMessage(awkward, ""));
    EXPECT_TRUE(sink.shown.empty());
}

TEST_F(DuplicateDetectorTest, LineTooShortForAnIdFallsBackToTheDigest) {
    EXPECT_FALSE(detector.IsDuplicateMessage({"Message-ID: <"}, "body"));
    EXPECT_TRUE(readAll(dir.file("incomming.ini")).startsWith("[MD5]\r\n"));
    EXPECT_TRUE(detector.IsDuplicateMessage({"Message-ID: <"}, "body"));
}

} // namespace
