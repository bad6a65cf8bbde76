#include "mail/transport/OutboxMessage.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

using Headers = QList<std::pair<QByteArray, QByteArray>>;

TEST(OutboxMessage, CommasInsideQuotesBecomeSpaces) {
    struct Case {
        const char* in;
        const char* out;
    } cases[] = {
        {"\"Lee, Ann\" <ann@x>, bob@y", "\"Lee  Ann\" <ann@x>, bob@y"},
        {"a@x,b@y", "a@x,b@y"},
        {"\"a,b\",\"c,d\"", "\"a b\",\"c d\""},
        {"\"unclosed, a@x, b@y", "\"unclosed  a@x  b@y"},
        {"", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(OutboxMessage::spaceQuotedCommas(c.in), c.out) << c.in;
}

TEST(OutboxMessage, StoredHeaderLines) {
    struct Case {
        const char* what;
        QByteArray block, cc, bcc;
        Headers others;
    } cases[] = {
        {"copy lists and others",
         "Cc: carl@x, dora@y\r\nBCC:  hidden@z \r\nX-Mailer: TORVEX Terminal MIREL v2.0\r\n"
         "X-Priority:3\r\n",
         "carl@x, dora@y",
         "hidden@z",
         {{"X-Mailer", "TORVEX Terminal MIREL v2.0"}, {"X-Priority", "3"}}},
        {"value keeps later colons", "X-Time: 12:30\r\n", "", "", {{"X-Time", "12:30"}}},
        {"empty line ends the block", "X-A: 1\r\n\r\nX-B: 2\r\n", "", "", {{"X-A", "1"}}},
        {"last line without line end is ignored", "X-A: 1\r\nX-B: 2", "", "", {{"X-A", "1"}}},
        {"CR alone ends a line", "X-A: 1\rcc: c@x\r", "c@x", "", {{"X-A", "1"}}},
        {"line without colon skipped", "garbage\r\nX-A: 1\r\n", "", "", {{"X-A", "1"}}},
        {"LF alone is no line end", "X-A: 1\nX-B: 2\n", "", "", {}},
        {"empty", "", "", "", {}},
    };
    for (const Case& c : cases) {
        QByteArray cc, bcc;
        Headers others;
        OutboxMessage::readStoredHeaders(c.block, cc, bcc, others);
        EXPECT_EQ(cc, c.cc) << c.what;
        EXPECT_EQ(bcc, c.bcc) << c.what;
        EXPECT_EQ(others, c.others) << c.what;
    }
}

TEST(OutboxMessage, StoredFieldsToOutgoingMail) {
    OutboxMessage::Stored s;
    s.from = "\"Ann\" <ann@x>";
    s.to = "\"Lee, Bob\" <bob@y>, carl@z";
    s.subject = "Hi";
    s.text = "t";
    s.html = "<p>t</p>";
    s.headers = "CC: \"Doe, Dora\" <dora@d>\r\nX-Mailer: M\r\n";
    const OutgoingMail m = OutboxMessage::toOutgoing(s);
    EXPECT_EQ(m.to, "\"Lee  Bob\" <bob@y>, carl@z");
    EXPECT_EQ(m.cc, "\"Doe  Dora\" <dora@d>");
    EXPECT_TRUE(m.bcc.isEmpty());
    EXPECT_EQ(m.headers, (Headers{{"X-Mailer", "M"}}));
    EXPECT_EQ(m.from, s.from);
    EXPECT_EQ(m.html, s.html);
}

TEST(OutboxMessage, SendingAccountByExactSenderTextElseTheLast) {
    EmailAccountList accounts({"* Work|p|u|w|0|1|smtp.work|ann@work.org|Ann Lee|",
                               "  Home|p|u|w|0|0|smtp.home|ann@home.org|Ann|", "  Fresh||||||||"});
    bool matched = false;
    EXPECT_EQ(OutboxMessage::sendingAccount(accounts, "\"Ann\" <ann@home.org>", &matched), 1);
    EXPECT_TRUE(matched);
    EXPECT_EQ(OutboxMessage::sendingAccount(accounts, "\"Ann Lee\" <ann@work.org>", &matched), 0);
    EXPECT_TRUE(matched);
    // Compared exactly: another case or spacing is another sender.
    EXPECT_EQ(OutboxMessage::sendingAccount(accounts, "\"ann\" <ann@home.org>", &matched), 2);
    EXPECT_FALSE(matched);
    EXPECT_EQ(OutboxMessage::sendingAccount(accounts, "ann@home.org", &matched), 2);
    EXPECT_FALSE(matched);
    EXPECT_EQ(OutboxMessage::sendingAccount({}, "x", &matched), -1);
    EXPECT_EQ(OutboxMessage::senderKey("  Fresh||||||||"), "\"\" <>");
}

} // namespace
