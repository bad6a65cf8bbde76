// The view page's rules, checked on the exact bytes that go to disk.
#include "mail/view/MessagePage.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

const QByteArray kHead = "<HTML><HEAD><TITLE></TITLE></HEAD><BODY BGCOLOR=#000000 TEXT=#FFFFFF>";
const QByteArray kTail = "</BODY></HTML>";

QByteArray link(const QByteArray& a) {
    return "<A TARGET=\"_blank\" HREF=\"" + a + "\">" + a + "</a>";
}

struct TextCase {
    const char* name;
    QByteArray text;
    QByteArray body;
};

class TextPage : public ::testing::TestWithParam<TextCase> {};

TEST_P(TextPage, WrapsBreaksAndLinks) {
    EXPECT_EQ(MessagePage::fromText(GetParam().text), kHead + GetParam().body + kTail);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, TextPage,
    ::testing::Values(
        TextCase{"Empty", "", ""},
        TextCase{"CrLfLines", "one\r\ntwo\r\n", "one\r<BR>\ntwo\r<BR>\n"},
        TextCase{"AddressBeforeBlank", "see http://a.example/x?y=1 now",
                 "see " + link("http://a.example/x?y=1") + " now"},
        TextCase{"AddressAtTheEnd", "go http://end.example", "go " + link("http://end.example")},
        TextCase{"AddressBeforeLineBreak", "http://a.example\nnext",
                 link("http://a.example") + "<BR>\nnext"},
        TextCase{"AddressBeforeCr", "http://a.example\r\n", link("http://a.example") + "\r<BR>\n"},
        TextCase{"AnyLetterCase", "HtTp://Up.Example", link("HtTp://Up.Example")},
        TextCase{"TwoAddressesOnOneLine", "http://a.x http://b.y",
                 link("http://a.x") + " " + link("http://b.y")},
        TextCase{"OnlyPlainHttp", "https://s.example ftp://f.example www.w.example",
                 "https://s.example ftp://f.example www.w.example"},
        TextCase{"NothingEscaped", "a < b & <i>c</i>", "a < b & <i>c</i>"},
        // An address inside an address is linked again in the caption.
        TextCase{"AddressHoldingAnother", "http://a.x/?u=http://b.y",
                 "<A TARGET=\"_blank\" HREF=\"http://a.x/?u=http://b.y\">http://a.x/?u=" +
                     link("http://b.y") + "</a>"}),
    [](const auto& info) { return std::string(info.param.name); });

struct HtmlCase {
    const char* name;
    QByteArray html;
    QByteArray page;
};

class HtmlPage : public ::testing::TestWithParam<HtmlCase> {};

TEST_P(HtmlPage, DarkensAndRepairs) {
    EXPECT_EQ(MessagePage::fromHtml(GetParam().html), GetParam().page);
}

const QByteArray kLinkHead = "<HTML><HEAD><base target=_blank></HEAD>";
const QByteArray kDark = "<BODY BGCOLOR=#000000 TEXT=#FFFFFF>";

INSTANTIATE_TEST_SUITE_P(
    Rules, HtmlPage,
    ::testing::Values(
        HtmlCase{"DarkQuotedBodyKept",
                 "<html><head><title>t</title></head><body bgcolor=\"#000000\">x</body></html>",
                 kLinkHead + "<body bgcolor=\"#000000\">x</body></html>"},
        HtmlCase{"WhiteBodyDarkenedBlackFontsWhitened",
                 "<html><body bgcolor=#ffffff><font color=#000000>a</font>"
                 "<FONT COLOR=\"#00ff00\">b</FONT><font color=#000>c</font></body></html>",
                 kLinkHead + kDark +
                     "<font color=#FFFFFF>a</font><FONT COLOR=\"#00ff00\">b</FONT>"
                     "<font color=#000>c</font></body></html>"},
        HtmlCase{"NoColourIsNotDark", "<p><BODY>x</BODY></HTML>",
                 kLinkHead + kDark + "x</BODY></HTML>"},
        HtmlCase{"DarkerButNotBlackIsNotDark", "x<body bgcolor=#000001 text=red>",
                 kLinkHead + kDark},
        HtmlCase{"FontWithoutColourKept", "x<body><font face=Arial>a</font><font>b",
                 kLinkHead + kDark + "<font face=Arial>a</font><font>b"},
        HtmlCase{"NonHexDigitsReadAsZero", "x<body><font color=#zz0000>a",
                 kLinkHead + kDark + "<font color=#FFFFFF>a"},
        HtmlCase{"BodyFirstKeepsEverything",
                 "<body bgcolor=white><font color=#000000>a</font></html>",
                 "<body bgcolor=white><font color=#000000>a</font></html>"},
        HtmlCase{"NoBodyKeepsEverything", "<p>only a fragment</p>", "<p>only a fragment</p>"},
        HtmlCase{"CutAfterHtm", "<body>x</body></htm", "<body>x</body></htmL>"},
        HtmlCase{"CutAfterHt", "<body>x</body></HT", "<body>x</body></HTML>"},
        HtmlCase{"WholeEndTagUntouched", "<body>x</body></html>\r\n", "<body>x</body></html>\r\n"},
        HtmlCase{"UnclosedBodyTag", "head<body bgcolor=#fff",
                 kLinkHead + "<" + kDark.mid(1, kDark.size() - 2)}),
    [](const auto& info) { return std::string(info.param.name); });

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
