#include "platform/Pop3Client.h"

#include "TestSupport.h"
#include "servers/DovecotServer.h"
#include "servers/LoopbackPort.h"

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

const QByteArray kSmall =
    "From: Ann <ann@example.org>\r\nSubject: one\r\n\r\n8-bit caf\xE9\r\n"
    ".a line that starts with a dot\r\n..and two\r\n.\r\nafter a lone dot\r\n";
const QByteArray kLarge = "From: d@example.org\r\nSubject: three\r\n\r\n" +
                          QByteArray("0123456789abcdef0123456789abcdef0123456789abcdef01\r\n")
                              .repeated(4000); // 200 KB: above the limit below

// Sessions, deletion and the trace are the whole send/receive runs'; here
// the bytes of a fetched message and the size limit.
// Catches dot-stuffing left in, 8-bit bytes changed, and a client that
// accumulates a message of any size: one above the limit is not fetched,
// says so, and the session carries on with the next.
TEST(Pop3Client, FetchesExactBytesAndSkipsMessagesAboveTheLimit) {
    DovecotServer server;
    server.addUser("ann", "pw");
    server.deliver("ann", kLarge);
    server.deliver("ann", kSmall);
    ASSERT_TRUE(server.start());
    Pop3Client pop;
    pop.setMaxMessageSize(100 * 1024);
    ASSERT_FALSE(pop.connect(loopbackServer(server.port(), "ann", "pw")));
    EXPECT_EQ(pop.messageCount(), 2);
    QByteArray got;
    EXPECT_EQ(pop.fetch(1, got).number, Pop3Client::kMessageTooLarge);
    ASSERT_FALSE(pop.fetch(2, got));
    EXPECT_EQ(got, kSmall);
    pop.logout();
    EXPECT_EQ(server.messagesOf("ann"), 2);
}

} // namespace
