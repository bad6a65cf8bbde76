#include "MailStoreFixture.h"

#include <QElapsedTimer>
#include <optional>

using namespace mirel;
using namespace mirel::test;

namespace {

const QByteArray kHead = "From: \"Ann\" <ann@example.org>\r\nTo: bob@example.net\r\n"
                         "Subject: Test\r\nDate: Sun, 22 Nov 2026 10:00:00 +0100\r\n"
                         "MIME-Version: 1.0\r\n";

QByteArray multipart(const QByteArray& type, const QByteArray& boundary,
                     const QList<QByteArray>& parts, bool close = true) {
    QByteArray out = "Content-Type: multipart/" + type + "; boundary=\"" + boundary + "\"\r\n\r\n";
    for (const QByteArray& p : parts)
        out += "--" + boundary + "\r\n" + p + "\r\n";
    if (close)
        out += "--" + boundary + "--\r\n";
    return out;
}

QByteArray part(const QByteArray& type, const QByteArray& body, const QByteArray& extra = {}) {
    return "Content-Type: " + type + "\r\n" + extra + "\r\n" + body;
}

using ReceivedMessageStoreTest = ReceivedMailFixture;

// Catches mail without an ID keyed on its opening only. (Mail fetched again
// stored twice is the send/receive runner's test against dovecot.)
TEST_F(ReceivedMessageStoreTest, MailWithoutAnIdIsKeyedOnItsWholeBody) {
    const QByteArray opening = kHead + "\r\nHello Ann,\r\n" + QByteArray(4096, '.');
    EXPECT_TRUE(received.StoreReceivedMessage(opening + "one", "0"));
    EXPECT_TRUE(received.StoreReceivedMessage(opening + "two", "0"));
    EXPECT_FALSE(received.StoreReceivedMessage(opening + "two", "0"));
}

// Catches a crash, a stack overflow or a quadratic walk on broken or hostile
// structure, and a message lost instead of stored as far as it goes. (Empty,
// header-only, non-MIME and truncated mail and NUL bytes are compared with
// Python's reading in the corpus test: tests/data/mail/generated/gen_broken_*.)
TEST_F(ReceivedMessageStoreTest, BrokenMailIsStoredAsFarAsItGoes) {
    auto nested = [](int levels, bool closed) {
        QByteArray m = part("text/plain", "bottom");
        for (int i = 0; i < levels; ++i)
            m = multipart("mixed", "b" + QByteArray::number(i), {m}, closed);
        return kHead + m;
    };
    const struct {
        const char* name;
        QByteArray raw;
        std::optional<QByteArray> text; // none: whatever the letters among garbage make
        int attachments;
    } cases[] = {
        {"boundary never closes",
         kHead + multipart("mixed", "never", {part("text/plain", "unclosed")}, false),
         "unclosed\r\n", 0},
        {"fifty levels of parts", nested(50, true), {}, 1},
        {"five thousand open levels", nested(5000, false), {}, 1},
        {"base64 garbage",
         kHead +
             part("text/plain", "!!!*** not base64 ***", "Content-Transfer-Encoding: base64\r\n"),
         std::nullopt, 0},
        {"one-megabyte header line",
         "X-Long: " + QByteArray(1 << 20, 'h') + "\r\n" + kHead + "\r\nshort\r\n", "short\r\n", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QElapsedTimer timer;
        timer.start();
        forgetReceived();
        const Rows r = storeMail(c.raw);
        EXPECT_LT(timer.elapsed(), 5000);
        if (c.text)
            EXPECT_EQ(r.message.text, *c.text);
        EXPECT_EQ(r.index.attachments, c.attachments);
        EXPECT_EQ(qint32(r.attachments.size()), c.attachments);
    }
    EXPECT_TRUE(sink.shown.empty());
}

} // namespace
