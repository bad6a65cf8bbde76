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
using mirel::test::referenceHtml2Text;

namespace {

QByteArray show(const QByteArray& b) {
    return b.toPercentEncoding(" <>&;/=\"!#.,-:()?'*");
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

TEST(HTML2Text, EveryTableEntityAndItsNeighbours) {
    int checked = 0;
    for (const auto& e : mirel::test::kReferenceEntities) {
        const QByteArray name(e.name);
        EXPECT_EQ(HTML2Text("&" + name + ";"), QByteArray(1, char(e.code))) << e.name;
        // One letter more or an upper-cased first letter is another name.
        for (const QByteArray& other : {name + "x", name.left(1).toUpper() + name.mid(1)}) {
            const QByteArray in = "&" + other + ";";
            EXPECT_EQ(HTML2Text(in), referenceHtml2Text(in)) << other.constData();
        }
        ++checked;
    }
    EXPECT_EQ(checked, 99);
}

// Documents built from the pieces the rules react to, in every order.
QByteArray randomDocument(std::mt19937& rng, int pieces) {
    static const char* const kPieces[] = {
        "<p>",    "<P>",        "<br>",    "<BR>",    "</div>", "</DIV>", "<p class=x>",
        "<br/>",  "<b>",        "</b>",    "<",       ">",      "&",      ";",
        "&amp;",  "&eacute;",   "&nbsp;",  "&shy;",   "&#233;", "&AMP;",  "&x y;",
        " ",      "  ",         "   ",     "\r\n",    "\n",     "\r",     "\n\n",
        "<body>", "<BODY x=1>", "</body>", "</BODY>", "<body",  "word",   "A",
        "\xE9",   "\x00",       "\t",      "</",      "/div",   "br",     "p",
    };
    QByteArray doc;
    for (int i = 0; i < pieces; ++i) {
        const char* p = kPieces[rng() % std::size(kPieces)];
        doc += *p ? QByteArray(p) : QByteArray(1, '\0');
    }
    return doc;
}

TEST(HTML2Text, MatchesTheReferenceOnRandomDocuments) {
    std::mt19937 rng(4242);
    for (int i = 0; i < 30000; ++i) {
        const QByteArray doc = randomDocument(rng, 1 + int(rng() % 40));
        ASSERT_EQ(show(HTML2Text(doc)), show(referenceHtml2Text(doc))) << show(doc).constData();
    }
}

TEST(HTML2Text, MatchesTheReferenceOnRealDocuments) {
    int compared = 0;
    qint64 bytes = 0;
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
        bytes += doc.size();
    }
    if (compared == 0)
        GTEST_SKIP() << "no HTML documents on this machine";
    RecordProperty("documents", compared);
    RecordProperty("bytes", int(bytes));
}

// Inputs that make a naive front-to-back scan search to the end of the text
// for every character. A quadratic version would not finish within the test
// time limit; the expected outputs are known without the reference.
TEST(HTML2Text, FiftyMegabyteWorstCases) {
    constexpr qsizetype kSize = 50 * 1024 * 1024;
    EXPECT_TRUE(HTML2Text(QByteArray(kSize, '<')).isEmpty());

    QByteArray amps(kSize, '&');
    EXPECT_EQ(HTML2Text(amps), amps);

    QByteArray spacedAmps = QByteArray("&x ").repeated(kSize / 3) + ";";
    QByteArray expected = QByteArray("&x ").repeated(kSize / 3) + ";";
    EXPECT_EQ(HTML2Text(spacedAmps), expected);

    QByteArray unclosed = QByteArray("a<b").repeated(kSize / 3);
    EXPECT_EQ(HTML2Text(unclosed), QByteArray("ab").repeated(kSize / 3));

    QByteArray paragraphs = QByteArray("<p>x&eacute;\r\n  ").repeated(kSize / 16);
    const QByteArray out = HTML2Text(paragraphs);
    EXPECT_EQ(out.size(), (kSize / 16) * 6);
    EXPECT_TRUE(out.startsWith("\r\n\r\nx\xE9\r\n\r\nx\xE9"));
}

} // namespace
