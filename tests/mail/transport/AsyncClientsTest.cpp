// The POP3 and SMTP clients on their worker threads. Sessions, outcomes and
// the thread they arrive on are exercised through the whole send/receive
// runs against real servers; here the rules only a direct caller can break.
#include "platform/AsyncPop3Client.h"
#include "platform/AsyncSmtpClient.h"

#include "TestSupport.h"
#include "servers/LoopbackPort.h"
#include "servers/ScriptedServer.h"
#include "servers/SmtpSinkServer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches a second action started over a running one (two transfers on one
// connection), an unknown action accepted, an outcome reported after close
// or cancel (a closed window's session would go on), a close that waits for
// the time-out of a server keeping the session hanging, and a client left
// busy (unusable) afterwards.
TEST(AsyncClients, OneActionAtATimeAndNoOutcomeAfterClose) {
    ensureCoreApp();
    int signals = 0;
    QEventLoop loop;
    auto count = [&] {
        ++signals;
        loop.quit();
    };

    ScriptedServer silent("+OK ready\r\n", {}, ScriptedServer::Ending::Silence);
    AsyncPop3Client pop;
    QObject::connect(&pop, &AsyncPop3Client::completed, count);
    QObject::connect(&pop, &AsyncPop3Client::failed, count);
    pop.setServer(loopbackServer(silent.port(), "ann", "pw"));
    EXPECT_FALSE(pop.start(99));
    ASSERT_TRUE(pop.start(AsyncPop3Client::Connect));
    EXPECT_TRUE(pop.isBusy());
    EXPECT_FALSE(pop.start(AsyncPop3Client::Fetch));
    QTimer::singleShot(500, &loop, &QEventLoop::quit); // the worker now waits on the server
    loop.exec();
    QElapsedTimer t;
    t.start();
    pop.close();
    EXPECT_LT(t.elapsed(), 3000);

    SmtpSinkServer sink;
    ASSERT_TRUE(sink.start({}));
    OutgoingMail m;
    m.from = "ann@example.org";
    m.to = "bob@example.org";
    m.text = "t\r\n";
    const QDateTime now = QDateTime::currentDateTime();
    AsyncSmtpClient smtp;
    QObject::connect(&smtp, &AsyncSmtpClient::sent, count);
    QObject::connect(&smtp, &AsyncSmtpClient::failed, count);
    ASSERT_TRUE(smtp.send(loopbackServer(sink.port()), m, now));
    EXPECT_TRUE(smtp.isBusy());
    EXPECT_FALSE(smtp.send(loopbackServer(sink.port()), m, now));
    smtp.cancel();
    QCoreApplication::processEvents();
    EXPECT_EQ(signals, 0);
    EXPECT_FALSE(pop.isBusy());
    EXPECT_FALSE(smtp.isBusy());

    ASSERT_TRUE(smtp.send(loopbackServer(sink.port()), m, now));
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_EQ(signals, 1);
    EXPECT_FALSE(smtp.isBusy());
}

} // namespace
