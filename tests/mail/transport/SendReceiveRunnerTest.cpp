// Whole send/receive runs against a real dovecot and a real aiosmtpd, with
// the store in a temporary folder; scripted peers only for the faults a
// real server will not produce on demand.
#include "mail/transport/SendReceiveRunner.h"

#include "MailStoreFixture.h"
#include "servers/DovecotServer.h"
#include "servers/LoopbackPort.h"
#include "servers/ScriptedServer.h"
#include "servers/SmtpSinkServer.h"
#include "settings/DebugLog.h"

#include "platform/IniDocument.h"
#include "platform/IniFile.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Most runs use one account, Ann's.
QByteArray ann(const QByteArray& pop3, const QByteArray& smtp, bool deleteFlag,
               const char* password = "pw", bool smtpLogin = false) {
    return "  Ann|" + pop3 + "|ann|" + password + (deleteFlag ? "|1|" : "|0|") +
           (smtpLogin ? "1|" : "0|") + smtp + "|ann@x.org|Ann|";
}

QByteArray local(int port) {
    return "127.0.0.1:" + QByteArray::number(port);
}

// The attachments of a message the sink received, as name and bytes.
using Files = QList<std::pair<QString, QByteArray>>;
Files files(const QJsonObject& msg) {
    Files out;
    for (const QJsonValue a : msg[QStringLiteral("attachments")].toArray())
        out.append(
            {a["filename"].toString(), QByteArray::fromBase64(a["data"].toString().toLatin1())});
    return out;
}

struct Outcome {
    QList<QByteArray> lines;
    bool over = false;
    SendReceiveSession::Phase phase = SendReceiveSession::Phase::Receiving;
    qint64 ms = 0;
    int loopTurns = 0; // 20 ms timer ticks the event loop served meanwhile
    QByteArray text() const { return lines.join('\n'); }
};

class SendReceiveRunnerTest : public MailStoreFixture {
protected:
    DebugLog debugLog{clock, dir.path(), true};
    DovecotServer pop;
    SmtpSinkServer smtp;

    void SetUp() override {
        ensureCoreApp();
        MailStoreFixture::SetUp();
    }

    const SendReceiveTexts texts{
        "Signed in:", "Ready", "No new messages", "New message", "Done", "Outbox", "", "Sent"};

    // The servers of most tests speak in the clear; the TLS tests turn that
    // off and answer the trust questions.
    bool plaintext = true;
    QString caFile;
    std::function<bool(const QString&, const QString&)> ask;
    QStringList asked;

    Outcome run(const QList<QByteArray>& accounts, int timeoutSeconds = 2) {
        Outcome r;
        SendReceiveRunner runner(store, ini, clock, EmailAccountList(accounts), texts, &debugLog);
        runner.setServerTuning([this, timeoutSeconds](MailServer& s) {
            s.connectTimeoutSeconds = timeoutSeconds;
            s.stallTimeoutSeconds = timeoutSeconds;
            s.plaintextAllowed = s.plaintextAllowed || plaintext;
            s.caFile = caFile;
        });
        runner.setServerTrust(dir.file("servers.ini"), [this](const QString& t, const QString& q) {
            asked << t + "\n" + q;
            return ask && ask(t, q);
        });
        QEventLoop loop;
        QObject::connect(&runner, &SendReceiveRunner::statusLine,
                         [&](const QByteArray& l) { r.lines << l; });
        QObject::connect(&runner, &SendReceiveRunner::over, &loop, [&] {
            r.over = true;
            loop.quit();
        });
        QTimer beat;
        QObject::connect(&beat, &QTimer::timeout, [&] { ++r.loopTurns; });
        beat.start(20);
        QTimer::singleShot(120000, &loop, &QEventLoop::quit);
        QElapsedTimer t;
        t.start();
        runner.open();
        if (!r.over)
            loop.exec();
        r.ms = t.elapsed();
        r.phase = runner.session()->phase();
        return r;
    }

    // Every outgoing message is Ann's, so it goes out through her account.
    qint32 storeOutbox(const QByteArray& to, const QByteArray& subject, const QByteArray& headers,
                       std::vector<AttachmentRow> attachments = {}) {
        NewIndexFields f;
        f.from = "\"Ann\" <ann@x.org>";
        f.to = to;
        f.subject = subject;
        f.date = "Sun, 22 Nov 2026 10:00:00 +0100";
        MessageRow m;
        m.text = "Plain caf\xE9\r\n";
        m.html = "<p>Html <b>caf\xE9</b></p>";
        m.headers = headers;
        return *store.createMessage(MailStore::kOutbox, f, m, attachments);
    }

    size_t count(const QByteArray& folder) { return store.FillMessageIndexList(folder).size(); }
};

// Catches an account skipped, mail left on the server despite the delete
// flag, a sent message left in the outbox or unread in Sent, a quoted comma
// splitting a recipient, bytes changed on the way, Windows-1252 text sent raw
// in a header or a file name, a stored header lost or a stored Content-Type
// doubling ours, an empty attachment dropped, no SMTP log-in where the
// account asks for one, and a password (plain or base64) in the debug log.
// (Hidden blind copies, the sender, copies and the HTML part are checked by
// the whole-program mail test as the composer writes them.)
TEST_F(SendReceiveRunnerTest, FetchesEveryAccountThenSendsTheOutbox) {
    pop.addUser("ann", "ann-pw");
    pop.addUser("bob", "bob-pw");
    pop.deliver("ann", "Message-ID: <1@x>\r\nSubject: one\r\nFrom: a@x\r\n\r\nfirst\r\n");
    pop.deliver("ann", "Subject: two\r\nFrom: a@x\r\n\r\nsecond body\r\n");
    ASSERT_TRUE(pop.start());
    ASSERT_TRUE(smtp.start({{}, "ann:ann-pw", {}}));

    QByteArray binary;
    for (int i = 0; i < 25000; ++i)
        binary += char((i * 13) & 0xFF);
    storeOutbox("bob@x.org, \"Lee, Jo\" <jo@x.org>", "Caf\xE9 report",
                "Cc: carl@x.org\r\nBcc: hidden@x.org\r\nX-Mailer: M\r\nX-Note: d\xE9j\xE0 vu\r\n"
                "Content-Type: text/plain\r\n",
                {{"r\xE9sum\xE9.bin", binary}, {"empty.txt", {}}});

    const Outcome r = run({ann(local(pop.port()), local(smtp.port()), true, "ann-pw", true),
                           "  Bob|" + local(pop.port()) + "|bob|bob-pw|0|0|" + local(smtp.port()) +
                               "|bob@x.org|Bob|"});
    ASSERT_TRUE(r.over);
    EXPECT_EQ(r.text(),
              QList<QByteArray>({"DS1: Signed in: UFCA-ANN", "DS1: Ready", "DS1: New message (1)",
                                 "DS1: New message (2)", "DS1: Done", "DS2: Signed in: UFCA-BOB",
                                 "DS2: Ready", "DS2: No new messages", "DS2: Done", "Outbox: Ready",
                                 "Outbox: Sent (1)", "Outbox: Done"})
                  .join('\n'));
    EXPECT_EQ(r.phase, SendReceiveSession::Phase::Ended);

    EXPECT_EQ(count(MailStore::kInbox), 2u);
    EXPECT_EQ(pop.messagesOf("ann"), 0) << "delete flag on: the server keeps nothing";
    EXPECT_EQ(count(MailStore::kOutbox), 0u);
    const std::vector<IndexRow> sent = store.FillMessageIndexList(MailStore::kSent);
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].readed, 1);

    const QList<QJsonObject> got = smtp.messages();
    ASSERT_EQ(got.size(), 1);
    const QJsonObject& m = got[0];
    EXPECT_EQ(m[QStringLiteral("login")].toString(), QStringLiteral("ann"));
    const QJsonValue headers = m[QStringLiteral("headers")]; // names in lower case
    EXPECT_EQ(headers["x-mailer"].toString() + headers["x-note"].toString(), "Md\u00e9j\u00e0 vu");
    EXPECT_EQ(m[QStringLiteral("content_type")].toString(), QStringLiteral("multipart/mixed"));
    // The quoted comma became a space, so "Lee, Jo" stays one recipient.
    EXPECT_EQ(m[QStringLiteral("rcpt_tos")].toVariant().toStringList(),
              (QStringList{"bob@x.org", "jo@x.org", "carl@x.org", "hidden@x.org"}));
    EXPECT_EQ(m[QStringLiteral("text")].toString().trimmed(), QStringLiteral("Plain café"));
    EXPECT_EQ(files(m), (Files{{"r\u00e9sum\u00e9.bin", binary}, {"empty.txt", {}}}));

    const QByteArray log = readAll(debugLog.path());
    for (const QByteArray& secret :
         {QByteArray("ann-pw"), QByteArray("bob-pw"), QByteArray("ann-pw").toBase64(),
          QByteArray("\0ann\0ann-pw", 11).toBase64()})
        EXPECT_FALSE(log.contains(secret)) << "a password reached the debug log";
}

// Catches mail kept on the server stored again by the next run, and known
// messages not deleted once the account switches to deleting.
TEST_F(SendReceiveRunnerTest, MailLeftOnTheServerIsStoredOnce) {
    pop.addUser("ann", "pw");
    pop.deliver("ann", "Message-ID: <k1@x>\r\nSubject: kept\r\n\r\nbody\r\n");
    pop.deliver("ann", "Subject: no id\r\n\r\nsame body every time\r\n");
    ASSERT_TRUE(pop.start());
    const QList<QByteArray> accounts = {ann(local(pop.port()), "", false)};

    const Outcome first = run(accounts);
    EXPECT_TRUE(first.text().contains("DS1: New message (2)")) << first.text().constData();
    const Outcome second = run(accounts);
    EXPECT_FALSE(second.text().contains("New message")) << second.text().constData();
    EXPECT_TRUE(second.text().endsWith("DS1: Done"));
    EXPECT_EQ(count(MailStore::kInbox), 2u);
    EXPECT_EQ(pop.messagesOf("ann"), 2);

    // Switched to deleting: known messages are removed all the same.
    QList<QByteArray> deleting = accounts;
    deleting[0] = ann(local(pop.port()), "", true);
    run(deleting);
    EXPECT_EQ(pop.messagesOf("ann"), 0);
    EXPECT_EQ(count(MailStore::kInbox), 2u);
}

// Each fault ends in an error line within the time limits and loses
// nothing; a receiving fault freezes the session (the outbox is not sent), a
// sending one leaves the message in the outbox. Catches a peer that stops in
// the middle passed off as a success, or waited on past the time limits.
TEST_F(SendReceiveRunnerTest, FaultsStopTheSessionWithAnErrorLine) {
    pop.addUser("ann", "pw");
    pop.deliver("ann", "Subject: a\r\n\r\nx\r\n");
    ASSERT_TRUE(pop.start());
    const int closedPort = freeLoopbackPort();
    storeOutbox("bob@x.org", "waiting", "");

    const QByteArray greeting = "+OK ready\r\n";
    const QList<QByteArray> login = {"+OK\r\nUSER\r\n.\r\n", "+OK\r\n", "+OK logged in\r\n"};
    const QByteArray one = "+OK\r\nMessage-ID: <d1@x>\r\nSubject: one\r\n\r\nbody\r\n.\r\n";
    ScriptedServer dropped(greeting,
                           login + QList<QByteArray>{"+OK 2 100\r\n",
                                                     "+OK\r\n1 50\r\n2 50\r\n.\r\n", one,
                                                     "+OK\r\nSubject: x\r\n\r\nhal"},
                           ScriptedServer::Ending::HangUp);
    ScriptedServer silent(greeting, {}, ScriptedServer::Ending::Silence);
    ScriptedServer garbled(greeting, login + QList<QByteArray>{"+OK lots\r\n"},
                           ScriptedServer::Ending::HangUp);
    const QList<QByteArray> upToData = {"250 hi\r\n", "250 ok\r\n", "250 ok\r\n", "354 go\r\n"};
    ScriptedServer smtpStalls("220 hi\r\n", upToData, ScriptedServer::Ending::Silence);
    ScriptedServer smtpDrops("220 hi\r\n", upToData, ScriptedServer::Ending::HangUp);
    ScriptedServer smtpRefuses("220 hi\r\n", {"250 hi\r\n", "553 no such sender\r\n"},
                               ScriptedServer::Ending::HangUp);

    // Each line says in words what went wrong and where (no "AsyncError (7)").
    struct Case {
        const char* what;
        QByteArray server;
        const char* password;
        QByteArray words;
        bool sending = false; // the server is the account's SMTP server
    } cases[] = {
        // dovecot delays its refusal, at times past the 2 s limit of these runs
        {"wrong password", local(pop.port()), "nope", "DS1: "},
        {"server not running", local(closedPort), "pw",
         "DS1: Could not connect to 127.0.0.1 port " + QByteArray::number(closedPort) +
             ": connection refused"},
        {"line dropped in the second message", local(dropped.port()), "nope",
         "DS1: The server closed the connection before the end of message 2"},
        {"server that never answers", local(silent.port()), "pw",
         "DS1: No answer from 127.0.0.1 port " + QByteArray::number(silent.port())},
        {"a message count that is no number", local(garbled.port()), "nope",
         "DS1: The server's message count is not a number"},
        {"no answer to the data", local(smtpStalls.port()), "pw", "Outbox: No answer", true},
        {"hang-up after the data", local(smtpDrops.port()), "pw", "Outbox: ", true},
        {"refused sender", local(smtpRefuses.port()), "pw", "Outbox: 127.0.0.1 refused: 553", true},
    };
    for (const Case& c : cases) {
        const Outcome r = run({c.sending ? ann("", c.server, true)
                                         : ann(c.server, local(closedPort), true, c.password)});
        ASSERT_TRUE(r.over) << c.what;
        EXPECT_EQ(r.phase,
                  c.sending ? SendReceiveSession::Phase::Ended : SendReceiveSession::Phase::Frozen)
            << c.what;
        EXPECT_TRUE(r.lines.at(c.sending ? 1 : r.lines.size() - 1).startsWith(c.words))
            << c.what << ": " << r.text().constData();
        EXPECT_LT(r.ms, 8000) << c.what;
        EXPECT_EQ(count(MailStore::kOutbox), 1u) << c.what;
    }
    EXPECT_EQ(pop.messagesOf("ann"), 1) << "nothing deleted after a failed log-in";
    // The one message that came through whole was stored; its deletion was
    // never committed, so the server still has it for the next run.
    EXPECT_EQ(count(MailStore::kInbox), 1u);
    // A QUIT would have had the server delete it.
    EXPECT_FALSE(dropped.received().join().contains("QUIT"));
    // The scripted peers take USER and PASS: the password stays out of the log.
    EXPECT_FALSE(readAll(debugLog.path()).contains("nope"));
}

// Catches a refused message moved to Sent, one that stops the rest, and one
// sent to the recipients the server took when it refused another.
TEST_F(SendReceiveRunnerTest, ARefusedMessageStaysInTheOutbox) {
    SmtpSinkServer::Options o;
    o.reject = "refused";
    ASSERT_TRUE(smtp.start(o));
    const qint32 bad = storeOutbox("ok@x.org, refused@x.org", "bad", "");
    storeOutbox("ok@x.org", "good", "");
    const Outcome r = run({ann("", local(smtp.port()), false)});
    ASSERT_TRUE(r.over);
    EXPECT_TRUE(r.lines.at(1).startsWith("Outbox: 127.0.0.1 refused: 5")) << r.text().constData();
    EXPECT_TRUE(r.text().endsWith("Outbox: Sent (2)\nOutbox: Done"));
    const std::vector<IndexRow> left = store.FillMessageIndexList(MailStore::kOutbox);
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].id, bad);
    EXPECT_EQ(smtp.messages().size(), 1);
    EXPECT_EQ(smtp.messages()[0].value("headers")["subject"].toString(), "good");
}

// 30 MB comes in whole; going out, it is more than the test server takes
// (its limit is 32 MiB after base64), which must cost nothing but an error
// line, while 20 MB goes out byte for byte.
TEST_F(SendReceiveRunnerTest, LargeMessagesInAndOutKeepTheLoopTurning) {
    pop.addUser("ann", "pw");
    const QByteArray big = "Subject: big\r\nContent-Type: text/plain\r\n\r\n" +
                           (QByteArray(76, 'x') + "\r\n").repeated(405000); // 30 MiB
    pop.deliver("ann", big);
    ASSERT_TRUE(pop.start());
    ASSERT_TRUE(smtp.start({}));
    QByteArray payload(30 * 1024 * 1024, '\0');
    for (int i = 0; i < payload.size(); ++i)
        payload[i] = char((i * 31) >> 3);
    const qint32 tooBig = storeOutbox("bob@x.org", "too big", "", {{"big.bin", payload}});
    payload.truncate(20 * 1024 * 1024);
    storeOutbox("bob@x.org", "big", "", {{"big.bin", payload}});

    const Outcome r = run({ann(local(pop.port()), local(smtp.port()), true)}, 30);
    ASSERT_TRUE(r.over);
    EXPECT_EQ(r.phase, SendReceiveSession::Phase::Ended) << r.text().constData();
    EXPECT_EQ(count(MailStore::kInbox), 1u);
    const std::optional<MessageRow> row = store.readMessageRow(
        MailStore::kInbox, store.FillMessageIndexList(MailStore::kInbox)[0].id);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->text.size(), big.size() - big.indexOf("\r\n\r\n") - 4);

    EXPECT_TRUE(r.lines.at(5).startsWith("Outbox: ")) << r.text().constData();
    const std::vector<IndexRow> left = store.FillMessageIndexList(MailStore::kOutbox);
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].id, tooBig);
    ASSERT_EQ(smtp.messages().size(), 1) << r.text().constData();
    EXPECT_TRUE(files(smtp.messages()[0]) == (Files{{"big.bin", payload}}));
    // The network and the store ran while the loop kept serving its timer:
    // at least a tick per 100 ms of the run.
    EXPECT_GT(r.loopTurns, int(r.ms / 100)) << r.ms << " ms, " << r.loopTurns << " turns";
    RecordProperty("run_ms", int(r.ms));
    RecordProperty("loop_turns", r.loopTurns);
}

// Catches a password sent in the clear, a self-signed server that cannot be
// used at all, a trust answer that is not kept or asked again, and a pinned
// certificate that would let a different one through.
TEST_F(SendReceiveRunnerTest, TlsIsRequiredAndTrustIsAskedOnceAndKept) {
    QTemporaryDir certDir;
    const TestCertificate cert = TestCertificate::make(certDir.path());
    QProcess openssl;
    openssl.start("openssl", {"x509", "-in", cert.certFile, "-noout", "-fingerprint", "-sha256"});
    openssl.waitForFinished();
    const QByteArray fingerprint =
        openssl.readAll().split('=').last().trimmed().replace(":", "").toLower();
    ASSERT_EQ(fingerprint.size(), 64);
    pop.addUser("ann", "secret-pw");
    pop.deliver("ann", "Subject: a\r\n\r\nx\r\n");
    ASSERT_TRUE(pop.start(cert));
    plaintext = false;
    const QByteArray server = local(pop.port());
    const QString trust = dir.file("servers.ini");
    ScriptedServer clear("+OK ready\r\n", {"+OK\r\nUSER\r\n.\r\n"}, ScriptedServer::Ending::HangUp);
    const QByteArray noTls =
        "DS1: 127.0.0.1 port " + QByteArray::number(clear.port()) + " offers no encryption";

    struct Step {
        const char* what;
        QByteArray server;
        bool yes;
        QString caFile;
        QString question; // "" = none asked
        QByteArray last;  // the last status line starts so
    } steps[] = {
        {"no TLS offered, refused", local(clear.port()), false, {}, "without encryption", noTls},
        {"self-signed, refused", server, false, {}, "does not trust", "DS1: The certificate of"},
        {"trusted through a CA: no question", server, false, cert.certFile, "", "DS1: Done"},
        {"self-signed, accepted", server, true, {}, "does not trust", "DS1: Done"},
        {"accepted before: no question", server, false, {}, "", "DS1: Done"},
    };
    for (const Step& s : steps) {
        asked.clear();
        ask = [&](auto&, auto&) { return s.yes; };
        caFile = s.caFile;
        const Outcome r = run({ann(s.server, "", false, "secret-pw")});
        EXPECT_TRUE(r.lines.last().startsWith(s.last)) << s.what << ": " << r.text().constData();
        EXPECT_EQ(asked.size(), s.question.isEmpty() ? 0 : 1) << s.what;
        if (!s.question.isEmpty() && !asked.isEmpty())
            EXPECT_TRUE(asked[0].contains(s.question)) << s.what;
    }
    for (const QByteArray& line : clear.received())
        EXPECT_FALSE(line.contains("secret-pw") || line.startsWith("PASS")) << line.constData();
    EXPECT_TRUE(pop.log().contains("TLS")) << pop.log().constData();
    EXPECT_EQ(IniDocument(readAll(trust)).value(server, "Fingerprint").value_or(""), fingerprint);

    // A different certificate than the one accepted: asked again, refused.
    IniFile::write(trust, server, "Fingerprint", QByteArray(64, 'a'));
    asked.clear();
    ask = [](auto&, auto&) { return false; };
    const Outcome changed = run({ann(server, "", false, "secret-pw")});
    ASSERT_EQ(asked.size(), 1);
    EXPECT_TRUE(asked[0].contains("has changed")) << asked[0].toStdString();
    EXPECT_TRUE(asked[0].contains(QString::fromLatin1(fingerprint.left(2)))) << "shows the new one";
    EXPECT_EQ(changed.phase, SendReceiveSession::Phase::Frozen);
    EXPECT_EQ(count(MailStore::kInbox), 1u) << "fetched once, by the trusted runs only";

    // Sending: the same question, then the message goes out inside TLS.
    ASSERT_TRUE(smtp.start({cert, {}, {}}));
    storeOutbox("bob@x.org", "over TLS", "");
    asked.clear();
    ask = [](auto&, auto&) { return true; };
    const Outcome sent = run({ann("", local(smtp.port()), false)});
    EXPECT_EQ(asked.size(), 1);
    ASSERT_EQ(smtp.messages().size(), 1) << sent.text().constData();
    EXPECT_TRUE(smtp.messages()[0][QStringLiteral("tls")].toBool());
}

} // namespace
