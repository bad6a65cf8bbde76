#include "mail/mime/HTML2Text.h"

#include "Html2TextReference.h"
#include "MailStoreFixture.h"

#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <gtest/gtest.h>
#include <random>

using namespace mirel;
using mirel::test::jsonTestData;
using mirel::test::referenceEntityNames;
using mirel::test::referenceHtml2Text;

namespace {

std::string show(const QByteArray& b) {
    return b.toPercentEncoding(" <>&;/=\"!#.,-:()?'*").toStdString();
}

// Catches any rule of the conversion written wrong, in the code or in the
// reference the random and real documents are compared with.
TEST(HTML2Text, WrittenExamples) {
    const QJsonArray rows = jsonTestData("mail/html2text.json")["rows"].toArray();
    ASSERT_GE(rows.size(), 29);
    for (const QJsonValue r : rows) {
        const QByteArray in = r[1].toString().toLatin1(), out = r[2].toString().toLatin1();
        const std::string what = r[0].toString().toStdString();
        EXPECT_EQ(show(HTML2Text(in)), show(out)) << what;
        EXPECT_EQ(show(referenceHtml2Text(in)), show(out)) << "reference: " << what;
    }
}

// Documents built from the pieces the rules react to, in every order; among
// them every entity name, one letter longer, or with its first letter's case
// flipped (each of those is another name).
QByteArray randomDocument(std::mt19937& rng, int pieces) {
    static const char* const kPieces[] = {
        "<p>",        "<P>",     "<br>",    "<BR>",  "</div>", "</DIV>", "<p class=x>", "<br/>",
        "<b>",        "</b>",    "<",       ">",     "&",      ";",      "&x y;",       "&#233;",
        " ",          "  ",      "   ",     "\r\n",  "\n",     "\r",     "\n\n",        "<body>",
        "<BODY x=1>", "</body>", "</BODY>", "<body", "word",   "A",      "\xE9",        "\x00",
        "\t",         "</",      "/div",    "br",    "p",
    };
    const QList<QByteArray>& names = referenceEntityNames();
    QByteArray doc;
    for (int i = 0; i < pieces; ++i) {
        const size_t k = rng() % (std::size(kPieces) + 9);
        if (k < std::size(kPieces)) {
            const char* p = kPieces[k];
            doc += *p ? QByteArray(p) : QByteArray(1, '\0');
            continue;
        }
        QByteArray name = names[qsizetype(rng() % size_t(names.size()))];
        if (k % 3 == 1)
            name += 'x';
        else if (k % 3 == 2)
            name[0] = char(name[0] ^ 0x20);
        doc += '&' + name + ';';
    }
    return doc;
}

// Catches a rule, an entity or a sixteen-byte step of the fast scan that
// gives other bytes than the reference: random documents, then the real
// documents of this machine.
TEST(HTML2Text, MatchesTheReference) {
    std::mt19937 rng(4242);
    for (int i = 0; i < 30000; ++i) {
        const QByteArray doc = randomDocument(rng, 1 + int(rng() % 40));
        ASSERT_EQ(show(HTML2Text(doc)), show(referenceHtml2Text(doc))) << show(doc);
    }
    int compared = 0;
    QDirIterator it(QStringLiteral("/usr/share/doc"),
                    {QStringLiteral("*.html"), QStringLiteral("*.htm")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile f(it.next());
        if (f.size() > 1024 * 1024 || !f.open(QIODevice::ReadOnly))
            continue;
        const QByteArray doc = f.readAll();
        ASSERT_EQ(HTML2Text(doc), referenceHtml2Text(doc)) << f.fileName().toStdString();
        ++compared;
    }
    RecordProperty("real_documents", compared);
}

// Catches a scan that searches to the end of the text for every character:
// on these inputs a quadratic version would not finish within the test time
// limit. The expected outputs are known without the reference.
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
