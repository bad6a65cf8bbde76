#include "platform/AsyncPop3Client.h"

#include "TestSupport.h"
#include "servers/DovecotServer.h"
#include "servers/LoopbackPort.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <curl/curl.h>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

/// What the client reported for one action, and on which thread.
struct Outcome {
    bool completed = false, failed = false, timedOut = false;
    int action = 0, number = 0;
    QByteArray description;
    QThread* thread = nullptr;
};

Outcome runAction(AsyncPop3Client& pop, int action) {
    Outcome o;
    QEventLoop loop;
    auto c1 = QObject::connect(&pop, &AsyncPop3Client::completed, &loop, [&](int a) {
        o.completed = true;
        o.action = a;
        o.thread = QThread::currentThread();
        loop.quit();
    });
    auto c2 =
        QObject::connect(&pop, &AsyncPop3Client::failed, &loop, [&](int n, const QByteArray& d) {
            o.failed = true;
            o.number = n;
            o.description = d;
            o.thread = QThread::currentThread();
            loop.quit();
        });
    QTimer::singleShot(20000, &loop, [&] {
        o.timedOut = true;
        loop.quit();
    });
    if (!pop.start(action))
        return o;
    loop.exec();
    QObject::disconnect(c1);
    QObject::disconnect(c2);
    return o;
}

class AsyncPop3ClientTest : public ::testing::Test {
protected:
    DovecotServer server;
    void SetUp() override {
        ensureCoreApp();
        server.addUser("ann", "pw");
        server.deliver("ann", "Subject: a\r\n\r\nfirst\r\n");
        server.deliver("ann", "Subject: b\r\n\r\nsecond\r\n");
        ASSERT_TRUE(server.start());
    }
    MailServer account(const QByteArray& password = "pw") {
        return loopbackServer(server.port(), "ann", password);
    }
};

TEST_F(AsyncPop3ClientTest, ASessionOfActionsReportsOnTheStartingThread) {
    AsyncPop3Client pop;
    pop.setServer(account());
    QList<QByteArray> trace;
    pop.setTraceEnabled(true);
    QObject::connect(&pop, &AsyncPop3Client::traced,
                     [&](const QByteArray& line) { trace.append(line); });

    Outcome o = runAction(pop, AsyncPop3Client::Connect);
    ASSERT_TRUE(o.completed) << o.description.constData();
    EXPECT_EQ(o.action, AsyncPop3Client::Connect);
    EXPECT_EQ(o.thread, QThread::currentThread());
    EXPECT_EQ(pop.messageCount(), 2);

    // The session's order: fetch, delete, fetch, log out.
    pop.setMessageNumber(1);
    ASSERT_TRUE(runAction(pop, AsyncPop3Client::Fetch).completed);
    EXPECT_EQ(pop.message(), "Subject: a\r\n\r\nfirst\r\n");
    ASSERT_TRUE(runAction(pop, AsyncPop3Client::Delete).completed);
    pop.setMessageNumber(2);
    ASSERT_TRUE(runAction(pop, AsyncPop3Client::Fetch).completed);
    EXPECT_EQ(pop.message(), "Subject: b\r\n\r\nsecond\r\n");
    ASSERT_TRUE(runAction(pop, AsyncPop3Client::Logout).completed);
    EXPECT_EQ(server.messagesOf("ann"), 1);

    QCoreApplication::processEvents(); // trace lines still queued
    EXPECT_TRUE(trace.contains("> RETR 2"));
    EXPECT_TRUE(trace.contains("> DELE 1"));
    for (const QByteArray& line : trace)
        EXPECT_FALSE(line.contains(QByteArray("\0ann\0pw", 7).toBase64())) << line.constData();
}

TEST_F(AsyncPop3ClientTest, OneActionAtATime) {
    AsyncPop3Client pop;
    pop.setServer(account());
    EXPECT_FALSE(pop.start(99));
    ASSERT_TRUE(pop.start(AsyncPop3Client::Connect));
    EXPECT_TRUE(pop.isBusy());
    EXPECT_FALSE(pop.start(AsyncPop3Client::Fetch));
    int completions = 0;
    QEventLoop loop;
    QObject::connect(&pop, &AsyncPop3Client::completed, [&](int) {
        ++completions;
        loop.quit();
    });
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    QCoreApplication::processEvents();
    EXPECT_EQ(completions, 1);
    EXPECT_FALSE(pop.isBusy());
}

TEST_F(AsyncPop3ClientTest, ErrorsArriveAsFailedWithNumberAndText) {
    struct Case {
        const char* what;
        MailServer server;
        int action, number;
    } cases[] = {
        {"wrong password", account("nope"), AsyncPop3Client::Connect, CURLE_LOGIN_DENIED},
        {"fetch before log-in", account(), AsyncPop3Client::Fetch, CURLE_SEND_ERROR},
        {"nothing listening", loopbackServer(freeLoopbackPort(), "ann", "pw"),
         AsyncPop3Client::Connect, CURLE_COULDNT_CONNECT},
    };
    for (Case& c : cases) {
        AsyncPop3Client pop;
        pop.setServer(c.server);
        pop.setMessageNumber(1);
        const Outcome o = runAction(pop, c.action);
        EXPECT_TRUE(o.failed && !o.completed) << c.what;
        EXPECT_EQ(o.number, c.number) << c.what << ": " << o.description.constData();
        EXPECT_FALSE(o.description.isEmpty()) << c.what;
    }
}

TEST_F(AsyncPop3ClientTest, CloseLogsOutAndSilencesTheRunningAction) {
    AsyncPop3Client pop;
    pop.setServer(account());
    ASSERT_TRUE(runAction(pop, AsyncPop3Client::Connect).completed);
    pop.setMessageNumber(2);
    ASSERT_TRUE(runAction(pop, AsyncPop3Client::Delete).completed);

    bool signalled = false;
    QObject::connect(&pop, &AsyncPop3Client::completed, [&] { signalled = true; });
    QObject::connect(&pop, &AsyncPop3Client::failed, [&] { signalled = true; });
    pop.setMessageNumber(1);
    ASSERT_TRUE(pop.start(AsyncPop3Client::Fetch));
    pop.close();
    QCoreApplication::processEvents();
    EXPECT_FALSE(signalled);
    EXPECT_FALSE(pop.isBusy());
    // Closing during a transfer may cut the line before QUIT: then the server
    // keeps both messages, which loses nothing. Either way the deletion is all
    // or nothing, and the fetched message is never deleted.
    QElapsedTimer waited;
    waited.start();
    while (server.messagesOf("ann") != 1 && waited.elapsed() < 2000)
        QThread::msleep(20);
    const int left = server.messagesOf("ann");
    EXPECT_TRUE(left == 1 || left == 2) << left;
    pop.close();
}

} // namespace
