// The SMTP client on its worker thread. Sent and refused messages are
// exercised through the whole send/receive runs against the test server;
// here the rules only a direct caller can break.
#include "platform/AsyncSmtpClient.h"

#include "TestSupport.h"
#include "servers/LoopbackPort.h"
#include "servers/SmtpSinkServer.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches a second send started over a running one, an outcome reported for
// a cancelled send, and a client left busy (unusable) after the cancel.
TEST(AsyncSmtpClient, OneSendAtATimeAndACancelledSendIsNotReported) {
    ensureCoreApp();
    SmtpSinkServer sink;
    ASSERT_TRUE(sink.start({}));
    OutgoingMail m;
    m.from = "ann@example.org";
    m.to = "bob@example.org";
    m.text = "t\r\n";
    const QDateTime now = QDateTime::currentDateTime();
    AsyncSmtpClient smtp;
    int signals = 0;
    QEventLoop loop;
    QObject::connect(&smtp, &AsyncSmtpClient::sent, &loop, [&] {
        ++signals;
        loop.quit();
    });
    QObject::connect(&smtp, &AsyncSmtpClient::failed, &loop, [&] {
        ++signals;
        loop.quit();
    });
    ASSERT_TRUE(smtp.send(loopbackServer(sink.port()), m, now));
    EXPECT_TRUE(smtp.isBusy());
    EXPECT_FALSE(smtp.send(loopbackServer(sink.port()), m, now));
    smtp.cancel();
    QCoreApplication::processEvents();
    EXPECT_EQ(signals, 0);
    EXPECT_FALSE(smtp.isBusy());

    ASSERT_TRUE(smtp.send(loopbackServer(sink.port()), m, now));
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_EQ(signals, 1);
    EXPECT_FALSE(smtp.isBusy());
}

} // namespace
