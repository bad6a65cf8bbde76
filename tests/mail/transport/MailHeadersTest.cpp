#include "platform/MailHeaders.h"

#include <QSet>
#include <QTimeZone>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

TEST(MailHeaders, TextOutsideAsciiBecomesShortEncodedWords) {
    EXPECT_EQ(MailHeaders::encodeText("Plain subject, (ok)"), "Plain subject, (ok)");
    EXPECT_EQ(MailHeaders::encodeText(""), "");
    EXPECT_EQ(MailHeaders::encodeText("caf\xE9 ok"), "=?windows-1252?Q?caf=E9_ok?=");
    EXPECT_EQ(MailHeaders::encodeText("a_b=c?"), "a_b=c?"); // ASCII stays as typed
    EXPECT_EQ(MailHeaders::encodeText("x=?y"), "=?windows-1252?Q?x=3D=3Fy?=");
    EXPECT_EQ(MailHeaders::encodeText("tab\there"), "tab\there");
    EXPECT_EQ(MailHeaders::encodeText("line\r\nbreak"), "=?windows-1252?Q?line=0D=0Abreak?=");

    const QByteArray longText = QByteArray("Gr\xFC\xDF"
                                           "e aus K\xF6ln ")
                                    .repeated(12);
    const QByteArray encoded = MailHeaders::encodeText(longText);
    int words = 0;
    for (const QByteArray& line : encoded.split('\n')) {
        const QByteArray word = line.trimmed();
        EXPECT_LE(word.size(), 75);
        EXPECT_TRUE(word.startsWith("=?windows-1252?Q?") && word.endsWith("?="));
        ++words;
    }
    EXPECT_GT(words, 3);
    // Decoding the words gives the text back.
    QByteArray back;
    for (const QByteArray& line : encoded.split('\n')) {
        QByteArray q = line.trimmed().mid(17);
        q.chop(2);
        back += QByteArray::fromPercentEncoding(q.replace('_', ' ').replace('=', '%'));
    }
    EXPECT_EQ(back, longText);
}

TEST(MailHeaders, AddressListsSplitOnlyOnSeparatingCommas) {
    struct Case {
        const char* in;
        QList<Mailbox> out;
    } cases[] = {
        {"a@x", {{"", "a@x"}}},
        {" a@x , b@y ,, ", {{"", "a@x"}, {"", "b@y"}}},
        {"\"Lee, Ann\" <ann@x>, bob@y", {{"Lee, Ann", "ann@x"}, {"", "bob@y"}}},
        {"Ann Lee <ann@x>", {{"Ann Lee", "ann@x"}}},
        {"\"Ann\" <ann@x>", {{"Ann", "ann@x"}}},
        {"<only@x>", {{"", "only@x"}}},
        {"\"say \\\"hi\\\"\" <q@x>", {{"say \"hi\"", "q@x"}}},
        {"\"unbalanced, a@x", {{"", "\"unbalanced, a@x"}}},
        {"", {}},
        {"Name <>", {}},
        // Found by fuzzing: an escaped quote does not end the quoted name,
        // and a comma inside angle brackets does not split.
        {"\"a\\\", b\" <q@x>, c@y", {{"a\", b", "q@x"}, {"", "c@y"}}},
        {"<only@,x>, c@y", {{"", "only@,x"}, {"", "c@y"}}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(MailHeaders::parseAddressList(c.in), c.out) << c.in;
        EXPECT_EQ(MailHeaders::parseAddressList(MailHeaders::formatAddressList(c.out)), c.out)
            << c.in;
    }
}

TEST(MailHeaders, DisplayNamesAreQuotedOrEncodedAddressesNever) {
    EXPECT_EQ(MailHeaders::formatAddressList({{"", "a@x"}, {"Ann", "ann@x"}}),
              "a@x,\r\n Ann <ann@x>");
    EXPECT_EQ(MailHeaders::formatAddressList({{"Lee, Ann", "ann@x"}}), "\"Lee, Ann\" <ann@x>");
    EXPECT_EQ(MailHeaders::formatAddressList({{"J\xF6rg", "j\xF6rg@x"}}),
              "=?windows-1252?Q?J=F6rg?= <j\xF6rg@x>");
    EXPECT_EQ(MailHeaders::formatAddressList({{"a\"b", "q@x"}}), "\"a\\\"b\" <q@x>");
}

TEST(MailHeaders, DateCarriesTheOffsetOfItsTime) {
    const QDate day(2026, 11, 22);
    const QTime time(20, 44, 5);
    EXPECT_EQ(MailHeaders::date(QDateTime(day, time, QTimeZone(3600))),
              "Sun, 22 Nov 2026 20:44:05 +0100");
    EXPECT_EQ(MailHeaders::date(QDateTime(day, time, QTimeZone(-(5 * 3600 + 30 * 60)))),
              "Sun, 22 Nov 2026 20:44:05 -0530");
    EXPECT_EQ(MailHeaders::date(QDateTime(QDate(2027, 1, 4), QTime(0, 0), QTimeZone::utc())),
              "Mon, 4 Jan 2027 00:00:00 +0000");
}

TEST(MailHeaders, MessageIdsAreUniqueInTheSendersDomain) {
    const QDateTime when(QDate(2026, 11, 22), QTime(20, 0), QTimeZone::utc());
    QSet<QByteArray> seen;
    for (int i = 0; i < 1000; ++i) {
        const QByteArray id = MailHeaders::messageId("ann@mail.example.org", when);
        EXPECT_TRUE(id.startsWith('<') && id.endsWith("@mail.example.org>")) << id.constData();
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 1000);
    EXPECT_TRUE(MailHeaders::messageId("no-domain", when).endsWith("@localhost>"));
    EXPECT_TRUE(MailHeaders::messageId("a@b c", when).endsWith("@localhost>"));
}

} // namespace
