#include "platform/Cp1252.h"

#include <gtest/gtest.h>

using namespace mirel;

// Catches a byte that does not come back from its character (two bytes on
// one character) and a character outside the code page written as anything
// but "?". (The range 0x80-0x9F read as Latin-1 is the mail display test's.)
TEST(Cp1252, EveryByteRoundTripsAndTheRestIsReplaced) {
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    EXPECT_EQ(Cp1252::fromUnicode(Cp1252::toUnicode(all)), all);
    EXPECT_EQ(Cp1252::fromUnicode(QString::fromUtf8("€ Ω 😀 é")), QByteArray("\x80 ? ? \xE9"));
}
