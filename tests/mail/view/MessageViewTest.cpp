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
// into the wrong field, flags read as text instead of numbers, and a sender
// shown with its address when a quoted name is there. (Encoded words in the
// columns are the whole-program view test's.)
TEST(MessageListLine, TableOfRules) {
    const QJsonObject rows = jsonTestData("mail/list-lines.json");
    auto bytes = [](const QJsonValue& v) { return v.toString().toLatin1(); };
    for (const QJsonValue r : rows["markedRead"].toArray())
        EXPECT_EQ(MessageListLine::markedRead(bytes(r[0])), bytes(r[1]));
    for (const QJsonValue r : rows["displayNames"].toArray())
        EXPECT_EQ(MessageListLine::displayName(bytes(r[0])), bytes(r[1])) << bytes(r[0]).data();
    for (const QJsonValue r : rows["parsed"].toArray()) {
        const MessageListLine l = MessageListLine::parse(bytes(r[0]));
        EXPECT_EQ(r[1].toArray(),
                  (QJsonArray{l.messageId(), l.isRead(), l.hasAttachments(),
                              QString::fromLatin1(l.from), QString::fromLatin1(l.to)}));
    }
}

class MessageViewTest : public ReceivedMailFixture {
protected:
    MessageView view{store};
};

// Catches a name lost when its quote is unclosed, and a message whose rows
// are gone that crashes or shows an error. (Reading, the page on disk and
// the source view are the whole-program view test's.)
TEST_F(MessageViewTest, AttachmentNamesAndMissingRows) {
    EXPECT_EQ(MessageView::attachmentName("name=\"report.pdf\"; size=3"), "report.pdf");
    EXPECT_EQ(MessageView::attachmentName("plain.txt"), "plain.txt");
    EXPECT_EQ(MessageView::attachmentName("name=\"unclosed"), "unclosed");

    const ShownMessage& gone = view.ShowMessage("2", 999);
    EXPECT_TRUE(gone.from.isEmpty());
    EXPECT_EQ(gone.page, MessagePage::fromText(""));
    EXPECT_TRUE(sink.shown.empty());
}

// Catches links that make the desktop do more than open a page or a new
// message: local files, scripts, and mail links that attach a local file.
TEST(MessageView, OutsideLinks) {
    for (const auto& r : readTable("mail/outside-links.txt")) {
        const QString handed = MessageView::outsideLink(QUrl(QString::fromLatin1(r[0]))).toString();
        EXPECT_EQ(handed.isEmpty() ? QString("-") : handed, QString::fromLatin1(r[1]))
            << r[0].data();
    }
}

// Faults: a UTF-8 multipart page read as Windows-1252 ("CafÃ©"); a named
// text part dropped; an encoded name not shown; a TAB of a folded Subject
// shifting the list's columns; the page written without its closing line
// end. (The text part and a name given only by the
// disposition are the whole-program everyday test's.)
TEST_F(MessageViewTest, PartsReadInTheirOwnCharsetAndNamedPartsAreFiles) {
    EXPECT_TRUE(received.StoreReceivedMessage(readAll(testData("mail/utf8-named-parts.eml")), "0"));
    const ShownMessage& m = view.ShowMessage("0", received.lastId());
    EXPECT_TRUE(
        MailDisplayText::decodeBody(m.page, m.charset).contains(QString::fromUtf8("Café €5")));
    EXPECT_EQ(m.attachmentNames, (QList<QByteArray>{"itinerary.txt", "€ rate.pdf", "Grüße.txt"}));
    EXPECT_EQ(readAll(view.pagePath()), m.page + "\r\n");
    EXPECT_EQ(store.FillMessageIndexList("0")[0].listLine().count('\t'), 6);
}

} // namespace
