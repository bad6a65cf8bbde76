// The rules of accounts, addresses and header lines that need no server; the
// rows are in tests/data/mail/account-rules.json, mail-headers.json and
// server-urls.json.
#include "mail/transport/AccountManager.h"
#include "mail/transport/AccountRecord.h"
#include "mail/transport/OutboxMessage.h"
#include "mail/transport/ServerAddress.h"
#include "platform/MailHeaders.h"
#include "platform/Pop3Client.h"
#include "platform/SmtpClient.h"

#include "MailStoreFixture.h"

#include <QJsonArray>
#include <QMap>
#include <QSet>
#include <QTimeZone>
#include <gtest/gtest.h>

using namespace mirel;
using mirel::test::jsonTestData;

namespace {

using R = AccountRecord;

QJsonArray accountRows(const char* table) {
    const QJsonArray rows = jsonTestData("mail/account-rules.json")[QLatin1String(table)].toArray();
    EXPECT_FALSE(rows.isEmpty()) << table;
    return rows;
}

QJsonArray headerRows(const char* table) {
    return jsonTestData("mail/mail-headers.json")[QLatin1String(table)].toArray();
}

QByteArray bytes(const QJsonValue& v) {
    return v.toString().toLatin1();
}

std::string what(const QJsonValue& v) {
    return v.toString().toStdString();
}

QList<Mailbox> mailboxes(const QJsonValue& v) {
    QList<Mailbox> out;
    for (const QJsonValue m : v.toArray())
        out.append({bytes(m[0]), bytes(m[1])});
    return out;
}

// Catches a field read from the wrong position of a short, long or hand-made
// record, the default mark or usability judged wrongly, and check boxes read
// from text instead of numbers (a file edited by hand may hold "2" or " 1").
TEST(AccountRecord, FieldsOfEveryRecordShape) {
    for (const QJsonValue c : accountRows("records")) {
        const QByteArray record = bytes(c[1]);
        for (int n = 0; n < R::kFieldCount; ++n)
            EXPECT_EQ(R::field(record, n), bytes(c[2][n])) << what(c[0]) << " field " << n;
        EXPECT_EQ(R::field(record, 40), "") << what(c[0]);
        EXPECT_EQ(R::isDefault(record), c[3].toBool()) << what(c[0]);
        EXPECT_EQ(R::isUsable(record), c[4].toBool()) << what(c[0]);
        EXPECT_EQ(R::settings(record).deleteFromServer, c[5].toBool()) << what(c[0]);
        EXPECT_EQ(R::settings(record).smtpLogin, c[6].toBool()) << what(c[0]);
    }
    EXPECT_EQ(R::name("* Work||||||||"), "Work");
    EXPECT_EQ(R::name("  Home|x|"), "Home");
    EXPECT_EQ(R::name("*"), "");
}

// Catches a window that opens on another row than the last marked one (a
// file edited by hand may mark several accounts or none).
TEST(AccountManager, OpensOnTheLastMarkedAccount) {
    for (const QJsonValue c : accountRows("marks")) {
        QList<QByteArray> entries;
        for (const QJsonValue e : c[0].toArray())
            entries << bytes(e);
        EmailAccountList list(entries);
        EXPECT_EQ(AccountManager(list).initialRow(), c[1].toInt()) << entries.join(',').data();
    }
}

// Catches a port read past its digits or out of range, and the default port
// lost.
TEST(ServerAddress, HostAndPortFromAServerField) {
    for (const QJsonValue c : accountRows("servers")) {
        const MailServer s = ServerAddress::parse(bytes(c[0]), c[1].toInt());
        EXPECT_EQ(s.host, bytes(c[2])) << what(c[0]);
        EXPECT_EQ(s.port, c[3].toInt()) << what(c[0]);
    }
}

// Catches the default ports mixed up. (The SMTP log-in only with the
// account's consent is the send/receive runs'.)
TEST(ServerAddress, DefaultPortsOfAnAccount) {
    const QByteArray record = "* W|pop.x|ann|pw|1|1|smtp.x|ann@x|Ann|";
    EXPECT_EQ(ServerAddress::smtpFor(record).port, 25);
    EXPECT_EQ(ServerAddress::pop3For(record).port, 110);
}

// Catches TLS chosen by the wrong port or mode, and an IPv6 host unbracketed.
TEST(MailClientUrl, TlsPortChoosesTlsFromTheFirstByte) {
    const QMap<QString, MailServer::Tls> modes = {{"ByPort", MailServer::Tls::ByPort},
                                                  {"Implicit", MailServer::Tls::Implicit},
                                                  {"WhenOffered", MailServer::Tls::WhenOffered}};
    for (const QJsonValue r : jsonTestData("mail/server-urls.json")["urls"].toArray()) {
        MailServer s;
        s.host = bytes(r[1]);
        s.port = r[2].toInt();
        s.tls = modes.value(r[3].toString());
        EXPECT_EQ(r[0] == "pop3" ? Pop3Client::urlFor(s, 7) : SmtpClient::urlFor(s), bytes(r[4]));
    }
}

// Catches a quoted comma that splits one recipient into two at the server,
// also where the quote never closes.
TEST(OutboxMessage, CommasInsideQuotesBecomeSpaces) {
    for (const QJsonValue c : accountRows("commas"))
        EXPECT_EQ(OutboxMessage::spaceQuotedCommas(bytes(c[0])), bytes(c[1])) << what(c[0]);
}

// Catches a header block read past its end, a line end other than CR LF or
// CR taken as one, and a copy list left among the other headers (a BCC line
// would go out with the message).
TEST(OutboxMessage, StoredHeaderLines) {
    for (const QJsonValue c : accountRows("headers")) {
        QByteArray cc, bcc;
        QList<std::pair<QByteArray, QByteArray>> others, expected;
        for (const QJsonValue h : c[4].toArray())
            expected.append({bytes(h[0]), bytes(h[1])});
        OutboxMessage::readStoredHeaders(bytes(c[1]), cc, bcc, others);
        EXPECT_EQ(cc, bytes(c[2])) << what(c[0]);
        EXPECT_EQ(bcc, bytes(c[3])) << what(c[0]);
        EXPECT_EQ(others, expected) << what(c[0]);
    }
}

// Catches a message sent through an account whose sender only resembles it
// (another case or spacing is another sender).
TEST(OutboxMessage, SendingAccountByExactSenderTextElseTheLast) {
    EmailAccountList accounts({"* Work|p|u|w|0|1|smtp.work|ann@work.org|Ann Lee|",
                               "  Home|p|u|w|0|0|smtp.home|ann@home.org|Ann|", "  Fresh||||||||"});
    for (const QJsonValue c : accountRows("senders")) {
        bool matched = false;
        EXPECT_EQ(OutboxMessage::sendingAccount(accounts, bytes(c[0]), &matched), c[1].toInt())
            << what(c[0]);
        EXPECT_EQ(matched, c[2].toBool()) << what(c[0]);
    }
    EXPECT_EQ(OutboxMessage::sendingAccount({}, "x", nullptr), -1);
}

// Catches text outside ASCII sent raw, ASCII encoded for no reason, an
// encoded word longer than a header line allows, and one that does not
// decode to the text it came from.
TEST(MailHeaders, TextOutsideAsciiBecomesShortEncodedWords) {
    for (const QJsonValue c : headerRows("encode"))
        EXPECT_EQ(MailHeaders::encodeText(bytes(c[0])), bytes(c[1])) << what(c[0]);

    const QByteArray longText = QByteArray("Gr\xFC\xDF"
                                           "e aus K\xF6ln ")
                                    .repeated(12);
    const QList<QByteArray> lines = MailHeaders::encodeText(longText).split('\n');
    EXPECT_GT(lines.size(), 3);
    QByteArray back;
    for (const QByteArray& line : lines) {
        const QByteArray word = line.trimmed();
        EXPECT_LE(word.size(), 75);
        ASSERT_TRUE(word.startsWith("=?windows-1252?Q?") && word.endsWith("?=")) << word.data();
        QByteArray q = word.mid(17).chopped(2);
        back += QByteArray::fromPercentEncoding(q.replace('_', ' ').replace('=', '%'));
    }
    EXPECT_EQ(back, longText);
}

// Catches a list split on a comma inside quotes or angle brackets (found by
// fuzzing: also after an escaped quote), and a display name written so that
// it no longer reads back the same.
TEST(MailHeaders, AddressListsSplitOnlyOnSeparatingCommas) {
    for (const QJsonValue c : headerRows("addresses")) {
        const QList<Mailbox> expected = mailboxes(c[1]);
        EXPECT_EQ(MailHeaders::parseAddressList(bytes(c[0])), expected) << what(c[0]);
        EXPECT_EQ(MailHeaders::parseAddressList(MailHeaders::formatAddressList(expected)), expected)
            << what(c[0]);
    }
    for (const QJsonValue c : headerRows("format"))
        EXPECT_EQ(MailHeaders::formatAddressList(mailboxes(c[0])), bytes(c[1]));
}

// Catches a Date in the wrong zone or form, and Message-IDs that repeat or
// name another domain.
TEST(MailHeaders, DateAndMessageId) {
    const QDateTime when(QDate(2026, 11, 22), QTime(20, 44, 5), QTimeZone::utc());
    for (const QJsonValue c : headerRows("dates"))
        EXPECT_EQ(MailHeaders::date(QDateTime(when.date(), when.time(), QTimeZone(c[0].toInt()))),
                  bytes(c[1]));
    EXPECT_EQ(MailHeaders::date(QDateTime(QDate(2027, 1, 4), QTime(0, 0), QTimeZone::utc())),
              "Mon, 4 Jan 2027 00:00:00 +0000");

    QSet<QByteArray> seen;
    for (int i = 0; i < 1000; ++i) {
        const QByteArray id = MailHeaders::messageId("ann@mail.example.org", when);
        EXPECT_TRUE(id.startsWith('<') && id.endsWith("@mail.example.org>")) << id.constData();
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 1000);
    EXPECT_TRUE(MailHeaders::messageId("no-domain", when).endsWith("@localhost>"));
    EXPECT_TRUE(MailHeaders::messageId("a@b c", when).endsWith("@localhost>"));
}

} // namespace
