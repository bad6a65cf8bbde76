#include "platform/Pop3Client.h"
#include "platform/SmtpClient.h"

#include "MailStoreFixture.h"
#include "servers/DovecotServer.h"
#include "servers/LoopbackPort.h"

#include <QJsonArray>
#include <QMap>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

const QByteArray kFirst =
    "From: Ann <ann@example.org>\r\nTo: bob@example.org\r\n"
    "Subject: one\r\nMessage-ID: <1@example.org>\r\n\r\nHello\r\n"
    ".a line that starts with a dot\r\n..and two\r\n.\r\nafter a lone dot\r\n";
const QByteArray kSecond = "From: c@example.org\r\nSubject: two\r\n\r\n8-bit caf\xE9\r\n";
const QByteArray kThird = "From: d@example.org\r\nSubject: three\r\n\r\n" +
                          QByteArray("0123456789abcdef0123456789abcdef0123456789abcdef01\r\n")
                              .repeated(4000); // 200 KB: several reads

class Pop3ClientTest : public ::testing::Test {
protected:
    DovecotServer server;
    QByteArray traced;

    void SetUp() override {
        server.addUser("ann", "s3cret-pw");
        for (const QByteArray& m : {kFirst, kSecond, kThird})
            server.deliver("ann", m);
    }

    MailServer account(int port, const QByteArray& password = "s3cret-pw") {
        return loopbackServer(port, "ann", password);
    }
    void traceInto(Pop3Client& c) {
        c.setTrace([this](QByteArrayView line) { traced += line.toByteArray() + '\n'; });
    }
    void expectNoSecretInTrace() {
        EXPECT_FALSE(traced.contains("s3cret-pw"));
        // AUTH PLAIN sends "\0user\0password" in base64; LOGIN the password alone.
        EXPECT_FALSE(traced.contains(QByteArray("\0ann\0s3cret-pw", 14).toBase64()));
        EXPECT_FALSE(traced.contains(QByteArray("s3cret-pw").toBase64()));
    }
    static int logins(const QByteArray& log) { return int(log.count("pop3-login: Info: Login:")); }
};

// Catches dot-stuffing left in, 8-bit bytes changed, a large message cut at a
// read boundary, a delete sent before QUIT takes effect, a second log-in, and
// a password in the trace (plain or base64).
TEST_F(Pop3ClientTest, CountsFetchesAndDeletesOverOneLogin) {
    ASSERT_TRUE(server.start());
    Pop3Client pop;
    traceInto(pop);
    ASSERT_FALSE(pop.connect(account(server.port()))) << traced.constData();
    EXPECT_EQ(pop.messageCount(), 3);

    QByteArray got;
    const QByteArray expected[] = {kFirst, kSecond, kThird};
    for (int n = 1; n <= 3; ++n) {
        ASSERT_FALSE(pop.fetch(n, got)) << n;
        EXPECT_EQ(got, expected[n - 1]) << n; // dot-stuffing undone, 8-bit kept
    }
    EXPECT_FALSE(pop.remove(2));
    EXPECT_EQ(server.messagesOf("ann"), 3); // deletion waits for QUIT
    pop.logout();
    EXPECT_EQ(server.messagesOf("ann"), 2);
    EXPECT_EQ(logins(server.log()), 1) << server.log().constData();
    expectNoSecretInTrace();

    // A new session sees what is left, renumbered.
    ASSERT_FALSE(pop.connect(account(server.port())));
    EXPECT_EQ(pop.messageCount(), 2);
    ASSERT_FALSE(pop.fetch(2, got));
    EXPECT_EQ(got, kThird);
    pop.logout();
}

// Catches a client that accumulates a message of any size: one above the
// limit is not fetched, says so, and the session carries on with the next.
TEST_F(Pop3ClientTest, MessageAboveTheSizeLimitStaysOnTheServer) {
    ASSERT_TRUE(server.start());
    Pop3Client pop;
    pop.setMaxMessageSize(100 * 1024);
    ASSERT_FALSE(pop.connect(account(server.port())));
    QByteArray got;
    EXPECT_EQ(pop.fetch(3, got).number, Pop3Client::kMessageTooLarge);
    ASSERT_FALSE(pop.fetch(2, got));
    EXPECT_EQ(got, kSecond);
    pop.logout();
    EXPECT_EQ(server.messagesOf("ann"), 3);
}

// Catches TLS chosen by the wrong port or mode, and an IPv6 host unbracketed.
TEST(MailClientUrl, TlsPortChoosesTlsFromTheFirstByte) {
    const QMap<QString, MailServer::Tls> modes = {{"ByPort", MailServer::Tls::ByPort},
                                                  {"Implicit", MailServer::Tls::Implicit},
                                                  {"WhenOffered", MailServer::Tls::WhenOffered}};
    for (const QJsonValue r : jsonTestData("mail/server-urls.json")["urls"].toArray()) {
        MailServer s;
        s.host = r[1].toString().toLatin1();
        s.port = r[2].toInt();
        s.tls = modes.value(r[3].toString());
        EXPECT_EQ(r[0] == "pop3" ? Pop3Client::urlFor(s, 7) : SmtpClient::urlFor(s),
                  r[4].toString().toLatin1());
    }
}

} // namespace
