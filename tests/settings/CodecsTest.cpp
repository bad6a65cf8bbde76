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

TEST(TripletCodec, DecodesBrokenInputByTheLeadingNumberRule) {
    struct Case {
        const char* in;
        QByteArray out;
    } cases[] = {
        {"", ""},          {"065", "A"},    {"06", "\x06"}, // trailing short group: its number
        {"0656", "A\x06"}, {"06566", "AB"}, {"abc", QByteArray(1, '\0')}, // not a number: 0
        {"6a5", "\x06"},                                                  // leading digits only
        {" 65", "A"},                                                     // leading blank skipped
        {"999065", "?A"},                                                 // no character above 255
        {"-01", "?"},                                                     // negative: no character
    };
    for (const Case& c : cases)
        EXPECT_EQ(decodeTriplets(c.in), c.out) << c.in;
}

TEST(CommaList, SplitsOnEveryCommaWithoutQuoting) {
    EXPECT_EQ(splitCommaList("a,b,,c"), (QList<QByteArray>{"a", "b", "", "c"}));
    EXPECT_EQ(splitCommaList(""), (QList<QByteArray>{""}));
    EXPECT_EQ(splitCommaList("\"a,b\""), (QList<QByteArray>{"\"a", "b\""}));
}

TEST(CommaList, LeadingNumberRule) {
    struct Case {
        const char* in;
        long out;
    } cases[] = {{"42", 42},
                 {"  42px", 42},
                 {"-15", -15},
                 {"+7", 7},
                 {"", 0},
                 {"abc", 0},
                 {"3.9", 3},
                 {"- 3", 0},
                 {"\t12,5", 12},
                 {"0x1F", 0},
                 {"99999999999999999999999", LONG_MAX}};
    for (const Case& c : cases)
        EXPECT_EQ(leadingNumber(c.in), c.out) << c.in;
}

TEST(CommaList, Colours) {
    EXPECT_EQ(parseRgb("255,128,0"), (Rgb{255, 128, 0}));
    EXPECT_EQ(parseRgb("300,-5,x"), (Rgb{255, 0, 0}));
    EXPECT_EQ(parseRgb("10"), (Rgb{10, 0, 0}));
    EXPECT_EQ(parseRgb(" 1, 2 ,3 "), (Rgb{1, 2, 3}));
}
