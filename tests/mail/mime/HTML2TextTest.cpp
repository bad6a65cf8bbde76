#include "mail/mime/HTML2Text.h"
#include "MailStoreFixture.h"

#include <QJsonArray>
#include <gtest/gtest.h>

using namespace mirel;
using mirel::test::jsonTestData;

namespace {

std::string show(const QByteArray& b) {
    return b.toPercentEncoding(" <>&;/=\"!#.,-:()?'*").toStdString();
}

// Catches any rule of the conversion, any entity or any sixteen-byte step of
// the fast scan written wrong: the written examples, then documents built at
// random from the pieces the rules react to (every entity name and its near
// misses among them), with the text a rule-by-rule scan made of each.
TEST(HTML2Text, WrittenAndRandomExamples) {
    for (const char* file : {"mail/html2text.json", "mail/html2text-random.json"}) {
        const QJsonArray rows = jsonTestData(file)["rows"].toArray();
        ASSERT_GE(rows.size(), 29) << file;
        for (const QJsonValue r : rows) {
            // [what, input, output], or [input, output] for the random ones
            const QJsonArray row = r.toArray();
            const QByteArray in = row[row.size() - 2].toString().toLatin1();
            EXPECT_EQ(show(HTML2Text(in)), show(row.last().toString().toLatin1())) << show(in);
        }
    }
}

// Catches a scan that searches to the end of the text for every character:
// on these inputs a quadratic version would not finish within the test time
// limit.
TEST(HTML2Text, FiftyMegabyteWorstCases) {
    constexpr qsizetype kSize = 50 * 1024 * 1024;
    for (const QJsonValue r : jsonTestData("mail/html2text.json")["worstCases"].toArray()) {
        const QByteArray piece = r[0].toString().toLatin1();
        const qsizetype times = kSize / piece.size();
        EXPECT_EQ(HTML2Text(piece.repeated(times)), r[1].toString().toLatin1().repeated(times))
            << piece.constData();
    }
}

} // namespace
