#include "platform/SmtpClient.h"

#include "TestSupport.h"
#include "platform/Cp1252.h"
#include "servers/LoopbackPort.h"
#include "servers/ScriptedServer.h"
#include "servers/SmtpSinkServer.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QTimeZone>
#include <curl/curl.h>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

QString text(const QByteArray& cp1252) {
    return Cp1252::toUnicode(cp1252);
}

QString headerOf(const QJsonObject& msg, const QString& name, int* count = nullptr) {
    QString value;
    int n = 0;
    for (const QJsonValue& h : msg[QStringLiteral("headers")].toArray()) {
        if (h[0].toString().compare(name, Qt::CaseInsensitive) == 0) {
            value = h[1].toString();
            ++n;
        }
    }
    if (count)
        *count = n;
    return value;
}

QString lf(QString s) {
    return s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

class SmtpClientTest : public ::testing::Test {
protected:
    SmtpSinkServer sink;
    TempDir dir;
    QByteArray traced;
    const QDateTime now{QDate(2026, 11, 22), QTime(20, 44, 5), QTimeZone(3600)};

    static MailServer server(int port) { return loopbackServer(port); }
    void traceInto(SmtpClient& c) {
        c.setTrace([this](QByteArrayView line) { traced += line.toByteArray() + '\n'; });
    }
    static OutgoingMail simpleMail() {
        OutgoingMail m;
        m.from = "\"Ann Lee\" <ann@example.org>";
        m.to = "bob@example.org";
        m.subject = "Hi";
        m.text = "Hello\r\n";
        m.html = "<p>Hello</p>";
        return m;
    }
};

// Recipients, the copy lists, the text and a binary attachment are also
// checked by the whole send/receive run. Catches: a Windows-1252 subject,
// name or header sent raw, a Bcc header leaking, two Content-Type lines, a
// Date in the wrong zone, an attachment read from disk changed, and an empty
// attachment dropped.
TEST_F(SmtpClientTest, TheReceiverReadsEveryPartAndNoBlindCopy) {
    ASSERT_TRUE(sink.start({}));
    QByteArray binary;
    for (int i = 0; i < 25000; ++i)
        binary += char((i * 7) & 0xFF);
    const QString onDisk = dir.file(QStringLiteral("report.pdf"));
    writeAll(onDisk, "%PDF-1.4\r\n\x00\xFF binary" + binary.left(300));

    OutgoingMail m;
    m.from = "\"Ann Lee\" <ann@example.org>";
    m.to = "bob@example.org, \"Smith, Jo\" <jo@example.org>";
    m.cc = "Carl <cc@example.org>";
    m.bcc = "hidden@example.org";
    m.subject = "Caf\xE9 au lait \x96 gr\xF6\xDF"
                "e";
    m.text = "Hello Bob,\r\n\r\nline with caf\xE9 and a very long line " + QByteArray(120, 'x') +
             "\r\n.\r\nend\r\n";
    m.html = "<html><body><p>Hello <b>Bob</b> caf\xE9</p></body></html>";
    m.headers = {{"X-Mailer", "TORVEX Terminal MIREL v2.0"},
                 {"X-Note", "d\xE9j\xE0 vu"},
                 {"Bcc", "leak@example.org"},
                 {"Content-Type", "text/plain"}};
    m.attachments = {
        {"data.bin", {}, binary}, {"r\xE9sum\xE9.pdf", onDisk, {}}, {"empty.txt", {}, {}}};

    SmtpClient smtp;
    traceInto(smtp);
    const TransportError e = smtp.send(server(sink.port()), m, now);
    ASSERT_FALSE(e) << e.description.constData() << traced.constData();

    const QList<QJsonObject> got = sink.messages();
    ASSERT_EQ(got.size(), 1);
    const QJsonObject& msg = got[0];
    EXPECT_EQ(msg[QStringLiteral("mail_from")].toString(), QStringLiteral("ann@example.org"));
    EXPECT_FALSE(sink.raw(1).contains("leak@"));

    EXPECT_EQ(headerOf(msg, "Subject"), text(m.subject));
    EXPECT_EQ(headerOf(msg, "From"), QStringLiteral("Ann Lee <ann@example.org>"));
    EXPECT_EQ(headerOf(msg, "To"),
              QStringLiteral("bob@example.org, \"Smith, Jo\" <jo@example.org>"));
    EXPECT_EQ(headerOf(msg, "Date"), QStringLiteral("Sun, 22 Nov 2026 20:44:05 +0100"));
    EXPECT_TRUE(headerOf(msg, "Message-ID").endsWith(QStringLiteral("@example.org>")));
    EXPECT_EQ(headerOf(msg, "X-Mailer"), QStringLiteral("TORVEX Terminal MIREL v2.0"));
    EXPECT_EQ(headerOf(msg, "X-Note"), text("d\xE9j\xE0 vu"));
    int contentTypes = 0;
    headerOf(msg, "Content-Type", &contentTypes);
    EXPECT_EQ(contentTypes, 1);
    EXPECT_EQ(msg[QStringLiteral("content_type")].toString(), QStringLiteral("multipart/mixed"));

    EXPECT_EQ(lf(msg[QStringLiteral("html")].toString()).trimmed(), text(m.html));

    const QJsonArray atts = msg[QStringLiteral("attachments")].toArray();
    ASSERT_EQ(atts.size(), 3);
    EXPECT_EQ(atts[1][QStringLiteral("filename")].toString(), text("r\xE9sum\xE9.pdf"));
    EXPECT_EQ(QByteArray::fromBase64(atts[1][QStringLiteral("data")].toString().toLatin1()),
              readAll(onDisk));
    EXPECT_EQ(atts[2][QStringLiteral("filename")].toString(), QStringLiteral("empty.txt"));
    EXPECT_TRUE(atts[2][QStringLiteral("data")].toString().isEmpty());
}

// Catches a log-in without the account's consent or despite a refusal, a
// password in the trace (plain or base64), and a text-only message sent as
// an empty multipart.
TEST_F(SmtpClientTest, LogsInOnlyWhenAskedAndNeverShowsThePassword) {
    ASSERT_TRUE(sink.start({{}, false, "ann:pa55word", {}}));
    struct Case {
        const char* what;
        QByteArray user, password;
        int number;
    } cases[] = {
        {"right password", "ann", "pa55word", 0},
        {"wrong password", "ann", "nope", CURLE_LOGIN_DENIED},
        {"no log-in where one is required", "", "", CURLE_SEND_ERROR},
    };
    for (const Case& c : cases) {
        MailServer s = server(sink.port());
        s.userName = c.user;
        s.password = c.password;
        SmtpClient smtp;
        traceInto(smtp);
        OutgoingMail m = simpleMail();
        m.html.clear();
        const TransportError e = smtp.send(s, m, now);
        EXPECT_EQ(e.number, c.number) << c.what << ": " << e.description.constData();
    }
    ASSERT_EQ(sink.messages().size(), 1);
    const QJsonObject msg = sink.messages()[0];
    EXPECT_EQ(msg[QStringLiteral("login")].toString(), QStringLiteral("ann"));
    EXPECT_EQ(lf(msg[QStringLiteral("text")].toString()), QStringLiteral("Hello\n"));
    EXPECT_TRUE(msg[QStringLiteral("html")].isNull());
    EXPECT_FALSE(traced.contains("pa55word"));
    EXPECT_FALSE(traced.contains(QByteArray("\0ann\0pa55word", 13).toBase64()));
    EXPECT_FALSE(traced.contains(QByteArray("pa55word").toBase64()));
}

// Catches a message sent to the accepted recipients when one was refused.
TEST_F(SmtpClientTest, ARefusedRecipientFailsTheMessage) {
    ASSERT_TRUE(sink.start({{}, false, {}, "nobody"}));
    OutgoingMail m = simpleMail();
    m.to = "bob@example.org, nobody@example.org";
    SmtpClient smtp;
    traceInto(smtp);
    const TransportError e = smtp.send(server(sink.port()), m, now);
    EXPECT_TRUE(e);
    EXPECT_TRUE(e.description.contains("550")) << e.description.constData();
    EXPECT_TRUE(sink.messages().isEmpty());
}

// Catches a send attempted with no recipient or sender, and a missing
// attachment file sent as empty.
TEST_F(SmtpClientTest, NothingToSendOrNobodyListening) {
    SmtpClient smtp;
    traceInto(smtp);
    OutgoingMail m = simpleMail();
    EXPECT_EQ(smtp.send(server(freeLoopbackPort()), m, now).number, CURLE_COULDNT_CONNECT);
    m.to = " , ";
    EXPECT_TRUE(smtp.send(server(freeLoopbackPort()), m, now));
    m = simpleMail();
    m.from.clear();
    EXPECT_TRUE(smtp.send(server(freeLoopbackPort()), m, now));
    m = simpleMail();
    m.attachments = {{"gone.txt", dir.file(QStringLiteral("gone.txt")), {}}};
    EXPECT_EQ(smtp.send(server(freeLoopbackPort()), m, now).number, CURLE_READ_ERROR);
}

// Catches a peer that stops in the middle passed off as a send, or waited
// on past the time limits. (The POP3 side is the send/receive runs' rows.)
TEST(SmtpClientFaults, PeerThatDropsOrStalls) {
    OutgoingMail m;
    m.from = "ann@x";
    m.to = "bob@y";
    m.text = "t";
    const QList<QByteArray> upToData = {"250 hi\r\n", "250 ok\r\n", "250 ok\r\n",
                                        "354 go ahead\r\n"};
    struct Case {
        const char* what;
        QList<QByteArray> replies;
        ScriptedServer::Ending ending;
    } cases[] = {
        {"hang-up after the greeting", {}, ScriptedServer::Ending::HangUp},
        {"silence after EHLO", {"250 hi\r\n"}, ScriptedServer::Ending::Silence},
        {"no answer to the data", upToData, ScriptedServer::Ending::Silence},
        {"hang-up after the data", upToData, ScriptedServer::Ending::HangUp},
        {"refused sender",
         {"250 hi\r\n", "553 no such sender\r\n"},
         ScriptedServer::Ending::HangUp},
    };
    for (const Case& c : cases) {
        ScriptedServer peer("220 scripted\r\n", c.replies, c.ending);
        SmtpClient smtp;
        MailServer s = loopbackServer(peer.port(), {}, {}, 2);
        s.tls = MailServer::Tls::WhenOffered;
        QElapsedTimer t;
        t.start();
        const TransportError e = smtp.send(s, m, QDateTime::currentDateTime());
        EXPECT_TRUE(e) << c.what;
        EXPECT_LT(t.elapsed(), 8000) << c.what;
        if (QByteArrayView(c.what) == "refused sender")
            EXPECT_TRUE(e.description.contains("553")) << e.description.constData();
    }
}

} // namespace
