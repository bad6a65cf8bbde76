#include "settings/CommaList.h"
#include "settings/TripletCodec.h"

#include <gtest/gtest.h>

using namespace mirel;

TEST(TripletCodec, EncodesEachByteAsThreeDigits) {
    EXPECT_EQ(encodeTriplets("A\r\n"), "065013010");
    EXPECT_EQ(encodeTriplets(""), "");
    EXPECT_EQ(encodeTriplets("\xFF\x00"), "255"); // literal stops at NUL
    EXPECT_EQ(encodeTriplets(QByteArray("\xFF\x00", 2)), "255000");
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    EXPECT_EQ(decodeTriplets(encodeTriplets(all)), all);
}

TEST(CommaList, SplitsOnEveryCommaWithoutQuoting) {
    EXPECT_EQ(splitCommaList("a,b,,c"), (QList<QByteArray>{"a", "b", "", "c"}));
    EXPECT_EQ(splitCommaList(""), (QList<QByteArray>{""}));
    EXPECT_EQ(splitCommaList("\"a,b\""), (QList<QByteArray>{"\"a", "b\""}));
}

TEST(CommaList, Colours) {
    EXPECT_EQ(parseRgb("255,128,0"), (Rgb{255, 128, 0}));
    EXPECT_EQ(parseRgb("300,-5,x"), (Rgb{255, 0, 0}));
    EXPECT_EQ(parseRgb("10"), (Rgb{10, 0, 0}));
    EXPECT_EQ(parseRgb(" 1, 2 ,3 "), (Rgb{1, 2, 3}));
}
