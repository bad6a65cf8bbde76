// The POP3 client on its worker thread. Sessions, errors and the thread the
// outcomes arrive on are exercised through the whole send/receive runs
// against dovecot; here the rules only a direct caller can break.
#include "platform/AsyncPop3Client.h"

#include "TestSupport.h"
#include "servers/DovecotServer.h"
#include "servers/LoopbackPort.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class AsyncPop3ClientTest : public ::testing::Test {
protected:
    DovecotServer server;
    AsyncPop3Client pop;
    int completions = 0, failures = 0;

    void SetUp() override {
        ensureCoreApp();
        server.addUser("ann", "pw");
        server.deliver("ann", "Subject: a\r\n\r\nfirst\r\n");
        server.deliver("ann", "Subject: b\r\n\r\nsecond\r\n");
        ASSERT_TRUE(server.start());
        pop.setServer(loopbackServer(server.port(), "ann", "pw"));
        QObject::connect(&pop, &AsyncPop3Client::completed, [this] { ++completions; });
        QObject::connect(&pop, &AsyncPop3Client::failed, [this] { ++failures; });
    }
    // Starts the action and waits for its one outcome.
    bool run(int action) {
        const int done = completions, before = completions + failures;
        if (!pop.start(action))
            return false;
        QEventLoop loop;
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
            if (completions + failures != before)
                loop.quit();
        });
        tick.start(10);
        QTimer::singleShot(20000, &loop, &QEventLoop::quit);
        loop.exec();
        return completions > done;
    }
};

// Catches a second action started over a running one (two transfers on one
// connection) and an unknown action accepted.
TEST_F(AsyncPop3ClientTest, OneActionAtATime) {
    EXPECT_FALSE(pop.start(99));
    ASSERT_TRUE(pop.start(AsyncPop3Client::Connect));
    EXPECT_TRUE(pop.isBusy());
    EXPECT_FALSE(pop.start(AsyncPop3Client::Fetch));
    QElapsedTimer waited;
    waited.start();
    while (completions == 0 && waited.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    QCoreApplication::processEvents();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(failures, 0);
    EXPECT_FALSE(pop.isBusy());
}

// Catches an outcome reported after close (a closed window's session would
// go on) and a close that loses the deletion or deletes the message being
// fetched.
TEST_F(AsyncPop3ClientTest, CloseLogsOutAndSilencesTheRunningAction) {
    ASSERT_TRUE(run(AsyncPop3Client::Connect));
    pop.setMessageNumber(2);
    ASSERT_TRUE(run(AsyncPop3Client::Delete));
    const int before = completions + failures;
    pop.setMessageNumber(1);
    ASSERT_TRUE(pop.start(AsyncPop3Client::Fetch));
    pop.close();
    QCoreApplication::processEvents();
    EXPECT_EQ(completions + failures, before);
    EXPECT_FALSE(pop.isBusy());
    // Closing during a transfer may cut the line before QUIT: then the server
    // keeps both messages, which loses nothing.
    QElapsedTimer waited;
    waited.start();
    while (server.messagesOf("ann") != 1 && waited.elapsed() < 2000)
        QThread::msleep(20);
    const int left = server.messagesOf("ann");
    EXPECT_TRUE(left == 1 || left == 2) << left;
    pop.close();
}

} // namespace
