#include "platform/Pop3Client.h"
#include "platform/SmtpClient.h"

#include "servers/LoopbackPort.h"
#include "servers/ScriptedServer.h"

#include <QElapsedTimer>
#include <curl/curl.h>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

MailServer at(int port) {
    MailServer s = loopbackServer(port, "ann", "pw", 2);
    s.tls = MailServer::Tls::WhenOffered;
    return s;
}

const QByteArray kGreeting = "+OK ready\r\n";
const QByteArray kCapa = "+OK\r\nUSER\r\n.\r\n";
const QList<QByteArray> kLogin = {kCapa, "+OK\r\n", "+OK logged in\r\n"};

// A peer that stops in the middle must end in an error within the time
// limits, never hang the session and never pass for success. (Dropped and
// stalled messages are the whole send/receive runs' fault rows.)
TEST(TransportFaults, Pop3PeerThatDropsOrStalls) {
    struct Case {
        const char* what;
        QList<QByteArray> replies;
        ScriptedServer::Ending ending;
    } cases[] = {
        {"hang-up after the greeting", {}, ScriptedServer::Ending::HangUp},
        {"silence after the greeting", {}, ScriptedServer::Ending::Silence},
        {"garbled STAT", kLogin + QList<QByteArray>{"+OK lots\r\n"},
         ScriptedServer::Ending::HangUp},
    };
    for (const Case& c : cases) {
        ScriptedServer peer(kGreeting, c.replies, c.ending);
        Pop3Client pop;
        QElapsedTimer t;
        t.start();
        const TransportError e = pop.connect(at(peer.port()));
        EXPECT_TRUE(e) << c.what;
        EXPECT_FALSE(e.description.isEmpty()) << c.what;
        EXPECT_LT(t.elapsed(), 8000) << c.what;
    }
}

TEST(TransportFaults, SmtpPeerThatDropsOrStalls) {
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
        MailServer s = at(peer.port());
        s.userName.clear();
        QElapsedTimer t;
        t.start();
        const TransportError e = smtp.send(s, m, QDateTime::currentDateTime());
        EXPECT_TRUE(e) << c.what;
        EXPECT_LT(t.elapsed(), 8000) << c.what;
        if (QByteArrayView(c.what) == "refused sender") {
            EXPECT_TRUE(e.description.contains("553")) << e.description.constData();
        }
    }
}

} // namespace
