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

struct Result {
    int sent = 0, failed = 0, number = 0;
    QThread* thread = nullptr;
};

Result waitFor(AsyncSmtpClient& smtp) {
    Result r;
    QEventLoop loop;
    QObject::connect(&smtp, &AsyncSmtpClient::sent, &loop, [&] {
        ++r.sent;
        r.thread = QThread::currentThread();
        loop.quit();
    });
    QObject::connect(&smtp, &AsyncSmtpClient::failed, &loop, [&](int n, const QByteArray&) {
        ++r.failed;
        r.number = n;
        r.thread = QThread::currentThread();
        loop.quit();
    });
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    return r;
}

OutgoingMail mail(const QByteArray& to) {
    OutgoingMail m;
    m.from = "ann@example.org";
    m.to = to;
    m.subject = "s";
    m.text = "t\r\n";
    return m;
}

TEST(AsyncSmtpClient, SendsOneAtATimeAndReportsOnTheStartingThread) {
    ensureCoreApp();
    SmtpSinkServer sink;
    ASSERT_TRUE(sink.start({{}, false, {}, "refused"}));
    AsyncSmtpClient smtp;
    const QDateTime now = QDateTime::currentDateTime();

    ASSERT_TRUE(smtp.send(loopbackServer(sink.port()), mail("bob@example.org"), now));
    EXPECT_TRUE(smtp.isBusy());
    EXPECT_FALSE(smtp.send(loopbackServer(sink.port()), mail("other@example.org"), now));
    Result r = waitFor(smtp);
    EXPECT_EQ(r.sent, 1);
    EXPECT_EQ(r.thread, QThread::currentThread());
    EXPECT_FALSE(smtp.isBusy());

    ASSERT_TRUE(smtp.send(loopbackServer(sink.port()), mail("refused@example.org"), now));
    r = waitFor(smtp);
    EXPECT_EQ(r.failed, 1);
    EXPECT_NE(r.number, 0);

    ASSERT_EQ(sink.messages().size(), 1);
    EXPECT_EQ(sink.messages()[0][QStringLiteral("rcpt_tos")].toVariant().toStringList(),
              QStringList{QStringLiteral("bob@example.org")});
}

TEST(AsyncSmtpClient, ACancelledSendIsNotReported) {
    ensureCoreApp();
    SmtpSinkServer sink;
    ASSERT_TRUE(sink.start({}));
    AsyncSmtpClient smtp;
    int signals = 0;
    QObject::connect(&smtp, &AsyncSmtpClient::sent, [&] { ++signals; });
    QObject::connect(&smtp, &AsyncSmtpClient::failed, [&] { ++signals; });
    ASSERT_TRUE(smtp.send(loopbackServer(sink.port()), mail("bob@example.org"),
                          QDateTime::currentDateTime()));
    smtp.cancel();
    QCoreApplication::processEvents();
    EXPECT_EQ(signals, 0);
    EXPECT_FALSE(smtp.isBusy());

    // The client is usable again afterwards.
    ASSERT_TRUE(smtp.send(loopbackServer(sink.port()), mail("bob@example.org"),
                          QDateTime::currentDateTime()));
    EXPECT_EQ(waitFor(smtp).sent, 1);
    EXPECT_EQ(signals, 1);
}

} // namespace
