// The list lines and the view of a message over a real store, with mail
// stored the way received mail is. Real corpus messages in the view are the
// whole-program view test's.
#include "mail/view/MessageView.h"
#include "MailStoreFixture.h"
#include "mail/mime/MailDisplayText.h"
#include "mail/view/MessageListLine.h"
#include "mail/view/MessagePage.h"

#include <QJsonArray>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches a TAB inside a field shifting the columns, a read mark written
// into the wrong field, and the flags read as text instead of numbers.
TEST(MessageListLine, SplitsMarksAndShowsNames) {
    const QByteArray line =
        "17\t0\t2\tHello\tthere\t\"Ann Smith\" <ann@x.org>\tMon, 1 Jan\tbob@y.net\textra";
    const MessageListLine l = MessageListLine::parse(line);
    EXPECT_EQ(l.messageId(), 17);
    EXPECT_FALSE(l.isRead());
    EXPECT_TRUE(l.hasAttachments());
    // A TAB inside a field shifts the rest; the recipient takes what is left.
    EXPECT_EQ(l.from, "there");
    EXPECT_EQ(l.to, "Mon, 1 Jan\tbob@y.net\textra");

    for (const QJsonValue r : jsonTestData("mail/list-lines.json")["markedRead"].toArray())
        EXPECT_EQ(MessageListLine::markedRead(r[0].toString().toLatin1()), r[1].toString());

    EXPECT_TRUE(MessageListLine::parse("1\t 2\t0").isRead()) << "numeric value, blanks skipped";
    EXPECT_FALSE(MessageListLine::parse("1\tx\t-1").isRead());
    EXPECT_FALSE(MessageListLine::parse("1\t0\t-1").hasAttachments());
}

// Catches a sender shown with its address when a quoted name is there,
// encoded words left undecoded, and hidden columns given a width.
TEST(MessageListLine, DisplayNamesAndDecodedColumns) {
    for (const QJsonValue n : jsonTestData("mail/list-lines.json")["displayNames"].toArray())
        EXPECT_EQ(MessageListLine::displayName(n[0].toString().toLatin1()), n[1].toString())
            << n[0].toString().toStdString();

    const QStringList cols =
        MessageListLine::parse("3\t1\t0\t=?utf-8?q?Gr=C3=BC=C3=9Fe?=\t\"=?iso-8859-1?q?J=F6rg?=\" "
                               "<j@x.de>\tToday\tplain <p@x.de>")
            .columns();
    EXPECT_EQ(cols, (QStringList{" ", "", QString::fromUtf8("Jörg"), "", QString::fromUtf8("Grüße"),
                                 "", "Today", "", "plain <p@x.de>"}));
    EXPECT_EQ(MessageListLine::parse("3\t0\t1").columns().value(0), "*");

    EXPECT_EQ(MessageListLine::columnWidths(33)[2], 0);
    EXPECT_EQ(MessageListLine::columnWidths(10)[8], 0);
}

class MessageViewTest : public ReceivedMailFixture {
protected:
    MessageView view{store};

    qint32 receive(const QByteArray& raw) {
        EXPECT_TRUE(received.StoreReceivedMessage(raw, "0"));
        return received.lastId();
    }
};

// Catches a message not marked read when shown, a page on disk that differs
// from the one shown, and a summary in another layout than the printed one.
TEST_F(MessageViewTest, TextMessagePageSummaryAndRead) {
    const qint32 id = receive("From: \"Ann\" <ann@x.org>\r\nTo: bob@y.net\r\nSubject: Hi\r\n"
                              "Date: Sun, 22 Nov 2026\r\n\r\nLine one\r\nhttp://x.org/a b\r\n");
    ASSERT_EQ(store.readIndexRow("0", id)->readed, 0);

    const ShownMessage& m = view.ShowMessage("0", id);
    EXPECT_EQ(store.readIndexRow("0", id)->readed, 1);
    const QByteArray page = MessagePage::fromText("Line one\r\nhttp://x.org/a b\r\n");
    EXPECT_EQ(m.page, page);
    EXPECT_EQ(readAll(view.pagePath()), page + "\r\n");
    EXPECT_EQ(m.summary,
              "From:\t\t\"Ann\" <ann@x.org>\r\nTo: \t\tbob@y.net\r\nSubject:\t\tHi\r\n"
              "Date:\t\tSun, 22 Nov 2026\r\n \r\nLine one\r\nhttp://x.org/a b\r\n\r\n\r\n");
    EXPECT_TRUE(m.attachmentNames.isEmpty());
    EXPECT_TRUE(m.headers.startsWith("From: \"Ann\""));

    view.ShowMessageSource();
    EXPECT_TRUE(view.current().page.isEmpty());
    EXPECT_FALSE(view.current().headers.isEmpty());
}

// Catches a name lost when its quote is unclosed, a white page left white,
// and a message whose rows are gone that crashes or shows an error.
TEST_F(MessageViewTest, AttachmentNamesAndMissingRows) {
    MessageRow bodies;
    bodies.html = "<html><body bgcolor=#ffffff>hi</body></html>";
    const auto id = store.createMessage(
        "2", NewIndexFields{QByteArray("s"), QByteArray("f"), QByteArray("d"), QByteArray("t")},
        bodies,
        {{"name=\"very_long_report_name.pdf\"", "%PDF"},
         {"plain.txt", "x"},
         {"name=\"unclosed", "y"}});
    ASSERT_TRUE(id);
    const ShownMessage& m = view.ShowMessage("2", *id);
    EXPECT_EQ(m.attachmentNames,
              (QList<QByteArray>{"very_long_report_name.pdf", "plain.txt", "unclosed"}));
    EXPECT_TRUE(m.summary.endsWith(
        "Attachments:\r\nvery_long_report_name.pdf\r\nplain.txt\r\nunclosed\r\n"));
    EXPECT_EQ(m.page, "<HTML><HEAD><base target=_blank></HEAD><BODY BGCOLOR=#000000 "
                      "TEXT=#FFFFFF>hi</body></html>");

    // A message whose rows are gone shows empty values and a page of nothing.
    const ShownMessage& gone = view.ShowMessage("2", 999);
    EXPECT_TRUE(gone.from.isEmpty());
    EXPECT_EQ(gone.page, MessagePage::fromText(""));
    EXPECT_TRUE(sink.shown.empty());
}

// Catches links that make the desktop do more than open a page or a new
// message: local files, scripts, and mail links that attach a local file.
TEST(MessageView, OutsideLinks) {
    const struct {
        const char *link, *handed;
    } cases[] = {
        {"http://example.com/a?b=c", "http://example.com/a?b=c"},
        {"file:///etc/passwd", ""},
        {"javascript:alert(1)", ""},
        {"mailto:ann@x.org?subject=Hi&attach=/etc/passwd&Attachment=a&body=x",
         "mailto:ann@x.org?subject=Hi&body=x"},
        {"MAILTO:bob@y.net?X-Attach=f&cc=c@z.org", "mailto:bob@y.net?cc=c@z.org"},
        {"mailto:ann@x.org%3Fattach=/etc/passwd", "mailto:ann@x.org"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MessageView::outsideLink(QUrl(c.link)).toString(), c.handed) << c.link;
}

// Faults: a UTF-8 multipart body read as Windows-1252 ("CafÃ©"); a named
// text part dropped; a name given only by the disposition, or encoded, not
// shown; a TAB of a folded Subject shifting the list's columns.
TEST_F(MessageViewTest, PartsReadInTheirOwnCharsetAndNamedPartsAreFiles) {
    const qint32 id = receive(readAll(testData("mail/utf8-named-parts.eml")));
    const ShownMessage& m = view.ShowMessage("0", id);
    EXPECT_TRUE(
        MailDisplayText::decodeBody(m.page, m.charset).contains(QString::fromUtf8("Café €5")));
    EXPECT_EQ(MailDisplayText::decodeBody(m.text, m.textCharset).trimmed(),
              QString::fromUtf8("Café €5"));
    EXPECT_EQ(m.attachmentNames, (QList<QByteArray>{"itinerary.txt", "€ rate.pdf", "Grüße.txt"}));
    EXPECT_TRUE(store.readAttachments("0", id)[0].filename.startsWith("name=\"itinerary.txt\"; "));
    EXPECT_EQ(store.FillMessageIndexList("0")[0].listLine().count('\t'), 6);
}

} // namespace
