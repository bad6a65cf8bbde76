// The small text rules the skin and store formats are read by, one table in
// tests/data: digit triplets, the leading number of a field, skin booleans.
#include "TestSupport.h"
#include "settings/CommaList.h"
#include "settings/TripletCodec.h"
#include "skin/ControlLine.h"

#include <functional>
#include <gtest/gtest.h>

using namespace mirel;

// Catches a rule that reads broken input differently from the files it was
// made for: a short or non-numeric triplet group, a number with a sign,
// blanks or an overflow, a boolean word or number read as no answer (or the
// other way round), and a fallback not used when there is no answer.
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
    };
    for (const auto& r : test::readTable("tables/text-rules.txt")) {
        ASSERT_TRUE(rules.contains(r[0])) << r[0].constData();
        EXPECT_EQ(rules[r[0]](r[1]), r[2]) << r[0].constData() << " '" << r[1].constData() << "'";
    }
}
