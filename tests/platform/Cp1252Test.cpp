#include "platform/CaseFold.h"
#include "platform/Cp1252.h"

#include <gtest/gtest.h>

using namespace mirel;

TEST(Cp1252, EveryByteRoundTrips) {
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    EXPECT_EQ(Cp1252::fromUnicode(Cp1252::toUnicode(all)), all);
}

TEST(Cp1252, MapsTheWindowsRangeAndReplacesTheRest) {
    EXPECT_EQ(Cp1252::toUnicode("\x80\x99\xE9"), QString::fromUtf8("€™é"));
    EXPECT_EQ(Cp1252::fromUnicode(QString::fromUtf8("€ Ω 😀 é")), QByteArray("\x80 ? ? \xE9"));
}

TEST(CaseFold, ComparesCp1252LettersWithoutRegardToCase) {
    EXPECT_TRUE(equalsNoCase("\xC9T\xC9", "\xE9t\xE9"));
    EXPECT_TRUE(equalsNoCase("\x8A\x8C\x8E\x9F", "\x9A\x9C\x9E\xFF"));
    EXPECT_FALSE(equalsNoCase("\xD7", "\xF7")); // multiplication and division signs
    EXPECT_LT(compareNoCase("apple", "Banana"), 0);
    EXPECT_GT(compareNoCase("b", "A"), 0);
    EXPECT_LT(compareNoCase("ab", "AbC"), 0);
    EXPECT_EQ(compareNoCase("MiReL", "mirel"), 0);
}
