#include "mail/transport/OutboxMessage.h"

#include "MailStoreFixture.h"

#include <QJsonArray>
#include <gtest/gtest.h>

using namespace mirel;
using mirel::test::jsonTestData;

namespace {

using Headers = QList<std::pair<QByteArray, QByteArray>>;

// Catches a quoted comma that splits one recipient into two at the server.
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

// Catches a header block read past its end, a line end other than CR LF or
// CR taken as one, and a copy list left among the other headers (a BCC line
// would go out with the message); the rows are in
// tests/data/mail/account-rules.json.
TEST(OutboxMessage, StoredHeaderLines) {
    const QJsonArray rows = jsonTestData("mail/account-rules.json")["headers"].toArray();
    ASSERT_FALSE(rows.isEmpty());
    auto bytes = [](const QJsonValue& v) { return v.toString().toLatin1(); };
    for (const QJsonValue c : rows) {
        QByteArray cc, bcc;
        Headers others, expected;
        for (const QJsonValue h : c[4].toArray())
            expected.append({bytes(h[0]), bytes(h[1])});
        OutboxMessage::readStoredHeaders(bytes(c[1]), cc, bcc, others);
        EXPECT_EQ(cc, bytes(c[2])) << c[0].toString().toStdString();
        EXPECT_EQ(bcc, bytes(c[3])) << c[0].toString().toStdString();
        EXPECT_EQ(others, expected) << c[0].toString().toStdString();
    }
}

// Catches copy lists or other headers lost between the outbox and SMTP.
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
}

// Catches a message sent through an account whose sender only resembles it.
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
