// The small text rules the skin and store formats are read and written by,
// one table in tests/data: digit triplets, the leading number of a field,
// skin booleans, comma lists, colours and names compared without case.
#include "TestSupport.h"
#include "platform/CaseFold.h"
#include "settings/CommaList.h"
#include "settings/TripletCodec.h"
#include "skin/ControlLine.h"

#include <functional>
#include <gtest/gtest.h>

using namespace mirel;

// Catches a rule that reads broken input differently from the files it was
// made for: a short or non-numeric triplet group, a number with a sign,
// blanks or an overflow, a boolean word or number read as no answer (or the
// other way round), a fallback not used when there is no answer, a byte
// written as triplets that does not read back, quotes honoured in a comma
// list, a colour channel left unclamped, and case folded for the wrong bytes.
TEST(TextRules, EveryRowOfTheTable) {
    const QHash<QByteArray, std::function<QByteArray(const QByteArray&)>> rules = {
        {"triplets", [](const QByteArray& in) { return decodeTriplets(in); }},
        {"number", [](const QByteArray& in) { return QByteArray::number(leadingNumber(in)); }},
        {"bool",
         [](const QByteArray& in) {
             const std::optional<bool> v = parseSkinBool(in);
             EXPECT_EQ(parseSkinBool(in, false), v.value_or(false));
             EXPECT_EQ(parseSkinBool(in, true), v.value_or(true));
             return QByteArray(!v ? "none" : *v ? "true" : "false");
         }},
        {"encode",
         [](const QByteArray& in) {
             EXPECT_EQ(decodeTriplets(encodeTriplets(in)), in);
             return encodeTriplets(in);
         }},
        {"split", [](const QByteArray& in) { return splitCommaList(in).join('|'); }},
        {"rgb",
         [](const QByteArray& in) {
             const Rgb c = parseRgb(in);
             return QByteArray::number(c.r) + ',' + QByteArray::number(c.g) + ',' +
                    QByteArray::number(c.b);
         }},
        {"compare",
         [](const QByteArray& in) {
             const QList<QByteArray> w = in.split(' ');
             const int order = compareNoCase(w[0], w[1]);
             EXPECT_EQ(equalsNoCase(w[0], w[1]), order == 0);
             return QByteArray::number((order > 0) - (order < 0));
         }},
    };
    for (const auto& r : test::readTable("tables/text-rules.txt")) {
        ASSERT_TRUE(rules.contains(r[0])) << r[0].constData();
        EXPECT_EQ(rules[r[0]](r[1]), r[2]) << r[0].constData() << " '" << r[1].constData() << "'";
    }
}
