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
    const struct {
        QByteArray piece, out;
    } cases[] = {
        {"<", {}},
        {"&", "&"},
        {"&x ", "&x "},
        {"a<b", "ab"},
        {"<p>x&eacute;\r\n  ", "\r\n\r\nx\xE9"},
    };
    for (const auto& c : cases) {
        const qsizetype times = kSize / c.piece.size();
        EXPECT_EQ(HTML2Text(c.piece.repeated(times)), c.out.repeated(times)) << c.piece.constData();
    }
}

} // namespace
