// The view page's rules, checked on the exact bytes that go to disk.
#include "mail/view/MessagePage.h"
#include "MailStoreFixture.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <gtest/gtest.h>

using namespace mirel;
using mirel::test::jsonTestData;

namespace {

const QByteArray kHead = "<HTML><HEAD><TITLE></TITLE></HEAD><BODY BGCOLOR=#000000 TEXT=#FFFFFF>";

// Catches any text page rule (breaks, links, escaping), any darkening or
// end-tag repair of an HTML page, and the wrong charset source winning: the
// rows are in tests/data/mail/message-page.json.
TEST(MessagePage, TableOfRules) {
    const QJsonObject rows = jsonTestData("mail/message-page.json");
    ASSERT_FALSE(rows.isEmpty());
    auto col = [](const QJsonValue& row, int i) { return row[i].toString().toLatin1(); };
    for (const QJsonValue r : rows["text"].toArray())
        EXPECT_EQ(MessagePage::fromText(col(r, 1)), col(r, 2)) << col(r, 0).constData();
    for (const QJsonValue r : rows["html"].toArray())
        EXPECT_EQ(MessagePage::fromHtml(col(r, 1)), col(r, 2)) << col(r, 0).constData();
    for (const QJsonValue r : rows["charset"].toArray())
        EXPECT_EQ(MessagePage::displayCharset(col(r, 1), col(r, 2)), col(r, 3))
            << col(r, 0).constData();
}

// Catches the text body shown although an HTML body is there.
TEST(MessagePage, HtmlBodyWinsOverText) {
    EXPECT_EQ(MessagePage::build("text", "<body>html</body></html>"), "<body>html</body></html>");
    EXPECT_TRUE(MessagePage::build("text", "").startsWith(kHead + "text"));
}

struct CharsetCase {
    const char* name;
    QByteArray page, headers, charset;
};

class DisplayCharset : public ::testing::TestWithParam<CharsetCase> {};

TEST_P(DisplayCharset, MetaThenHeaderThenWindows1252) {
    EXPECT_EQ(MessagePage::displayCharset(GetParam().page, GetParam().headers), GetParam().charset);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, DisplayCharset,
    ::testing::Values(
        CharsetCase{"None", "<p>x", "Subject: a\r\n", "windows-1252"},
        CharsetCase{"HttpEquivMeta",
                    "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\">",
                    "Content-Type: text/html; charset=iso-8859-2\r\n", "utf-8"},
        CharsetCase{"Html5Meta", "<META CHARSET='koi8-r'>", "", "koi8-r"},
        CharsetCase{"MetaWithoutCharset", "<meta name=x><p>charset=utf-8", "", "windows-1252"},
        CharsetCase{"HeaderCharset", "x",
                    "From: a\r\ncontent-type: text/plain;\r\n\tcharset=\"ISO-8859-15\"\r\n",
                    "iso-8859-15"}),
    [](const auto& info) { return std::string(info.param.name); });

// Catches page building that grows with the square of the message (a
// megabyte of tags or addresses once took minutes) or a page that explodes
// on one endless address.
TEST(MessagePage, HostileBodiesBuildInLinearTime) {
    const struct {
        const char* name;
        QByteArray text, html;
    } cases[] = {
        {"meta tags", {}, "x<body>" + QByteArray("<META>").repeated(200000)},
        {"unclosed meta tags", {}, QByteArray("<META CHARSET= ").repeated(100000)},
        {"blank addresses", QByteArray("http:// ").repeated(160000), {}},
        {"one endless address", QByteArray("http://").repeated(150000), {}},
        {"unclosed font tags", {}, "x<body>" + QByteArray("<FONT color=").repeated(100000)},
    };
    for (const auto& c : cases) {
        QElapsedTimer t;
        t.start();
        const QByteArray page = MessagePage::build(c.text, c.html);
        MessagePage::displayCharset(c.html, c.text);
        EXPECT_LT(t.elapsed(), 5000) << c.name; // was minutes; the machine may be busy
        EXPECT_LT(page.size(), 40 * (c.text.size() + c.html.size())) << c.name;
    }
}

} // namespace
