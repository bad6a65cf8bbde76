#include "mail/mime/MailDisplayText.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

TEST(MailDisplayTextTest, DecodesEncodedWordsAndRawBytes) {
    const struct {
        QByteArray stored;
        QString shown;
    } cases[] = {
        {"=?iso-8859-1?q?Caf=E9?= au lait", QStringLiteral("Café au lait")},
        {"=?UTF-8?B?R3LDvMOfZQ==?=", QStringLiteral("Grüße")},
        {"\"=?utf-8?q?J=C3=B6rg?=\" <j@example.org>", QStringLiteral("\"Jörg\" <j@example.org>")},
        {"plain ascii", QStringLiteral("plain ascii")},
        {"raw \xe9t\xe9 in cp1252", QStringLiteral("raw été in cp1252")},
        {"raw utf-8 \xc3\xa9t\xc3\xa9", QStringLiteral("raw utf-8 été")},
        {"=?bogus-charset?q?x?=", QStringLiteral("x")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MailDisplayText::decodeHeader(c.stored), c.shown) << c.stored.constData();
}

TEST(MailDisplayTextTest, ReadsBodiesInTheirDeclaredCharset) {
    EXPECT_EQ(MailDisplayText::charsetOf("charset=\"UTF-8\"; format=flowed"), QByteArray("utf-8"));
    EXPECT_EQ(MailDisplayText::charsetOf("name=\"a.txt\""), QByteArray("windows-1252"));
    EXPECT_EQ(MailDisplayText::charsetOf(""), QByteArray("windows-1252"));

    EXPECT_EQ(MailDisplayText::decodeBody("\x93q\x94", "windows-1252"), QStringLiteral("“q”"));
    EXPECT_EQ(MailDisplayText::decodeBody("\x93q\x94", "iso-8859-1"), QStringLiteral("“q”"));
    EXPECT_EQ(MailDisplayText::decodeBody("\xc3\xbc", "utf-8"), QStringLiteral("ü"));
    EXPECT_EQ(MailDisplayText::decodeBody("\xfc", "utf-8"), QStringLiteral("ü")); // mislabelled
    EXPECT_EQ(MailDisplayText::decodeBody("\xe1\xce", "koi8-r"), QStringLiteral("Ан"));
    EXPECT_EQ(MailDisplayText::decodeBody("caf\xe9", "no-such-charset"), QStringLiteral("café"));
}

} // namespace
