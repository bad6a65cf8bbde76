// The view page's rules, checked on the exact bytes that go to disk.
#include "mail/view/MessagePage.h"
#include "MailStoreFixture.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <gtest/gtest.h>

using namespace mirel;
using mirel::test::jsonTestData;

namespace {

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
