// The e-mail screen in the real main window, offscreen: the list of a
// folder with read and unread rows, opening a message, the source view,
// attachments, links, and the folder an overview row chooses.
#include "mail/view/EmailScreen.h"
#include "MainWindowHarness.h"
#include "mail/store/MailStore.h"
#include "mail/view/FolderScreen.h"
#include "ui/SkinButton.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextEdit>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

struct Main : test::MainWindowHarness {
    QList<QUrl> opened;

    Main()
        : MainWindowHarness("mail/skins/email-screen.skn",
                            QDateTime(QDate(2026, 11, 22), QTime(9, 0))) {
        start([](frmMain& w) { w.resize(1024, 768); });
        screen().setLinkOpener([this](const QUrl& u) { opened.append(u); });
    }
    EmailScreen& screen() { return *w->emailScreen(); }
    qint32 add(const QByteArray& folder, const QByteArray& subject, const QByteArray& from,
               MessageRow bodies, std::vector<AttachmentRow> attachments = {}) {
        clock.advanceSeconds(60);
        return *w->mailStore()->createMessage(
            folder,
            NewIndexFields{subject, from, QByteArray("Sun, 22 Nov 2026"), QByteArray("me@x.org")},
            bodies, attachments);
    }
    void clickRow(int row) {
        QTreeWidget* list = screen().MLmessages();
        list->setCurrentItem(list->topLevelItem(row));
        Q_EMIT list->itemClicked(list->topLevelItem(row), 0);
    }
    bool mailButtonShown(const char* command) {
        return w->button(w->state().tables.mailButtons.value(command))->isVisible();
    }
};

// The list, caption and source of real mail are checked in the
// whole-program view test; here what it cannot see. Catches: a row not
// marked read (on screen or in the store), the text body shown although the
// message has an HTML body, the page or buttons of an open message left hidden, a link to a local
// file or relative page handed to the desktop, an attachment name shown beyond its caption without
// its full name as a plain tool tip, and the screen's own button resetting the source view.
TEST(EmailScreen, ListOpenSourceAndAttachments) {
    Main m;
    MessageRow text;
    text.text = "Hello\r\n";
    text.headers = "From: \"Ann\" <ann@x.org>\r\nSubject: Plain\r\n";
    MessageRow html;
    html.html = "<html><body bgcolor=#ffffff>Hi <a href=\"http://example.com/\">site</a></body>";
    html.text = "the text body\r\n";
    m.add("0", "Plain", "\"Ann\" <ann@x.org>", text);
    m.add("0", "Html", "bob@y.net", html,
          {{"name=\"<b>long_report</b>.pdf\"", "%PDF-1.4"}, {"name=\"a.txt\"", "x"}});

    m.click("EMAIL");
    QTreeWidget* list = m.screen().MLmessages();
    ASSERT_EQ(list->topLevelItemCount(), 2);
    EXPECT_EQ(list->topLevelItem(0)->text(0), "*");
    EXPECT_EQ(list->topLevelItem(1)->text(0), " ");
    const QColor fore(200, 200, 200);
    EXPECT_NE(list->topLevelItem(0)->foreground(4).color(), fore);
    EXPECT_FALSE(m.screen().wbEmail()->isVisible());
    EXPECT_FALSE(m.mailButtonShown("emailreply"));
    EXPECT_TRUE(m.w->button(m.w->state().buttonCount())->isVisible()) << "EMAILNEW stays";

    m.clickRow(0);
    EXPECT_EQ(list->topLevelItem(0)->foreground(4).color(), fore);
    EXPECT_TRUE(m.screen().ListMessages()[0].startsWith(QByteArray::number(2) + "\t1\t"));
    EXPECT_EQ(m.w->mailStore()->readIndexRow("0", 2)->readed, 1);
    EXPECT_TRUE(m.screen().wbEmail()->isVisible());
    EXPECT_TRUE(m.screen().view().current().page.contains("site"));
    EXPECT_TRUE(m.mailButtonShown("emailreply"));
    QListWidget* att = m.screen().lvAttachments();
    ASSERT_EQ(att->count(), 2);
    EXPECT_EQ(att->item(0)->text(), "<b>long_repo");
    QTextDocument tip; // a name from a stranger is never markup
    tip.setHtml(att->item(0)->toolTip());
    EXPECT_EQ(tip.toPlainText(), "<b>long_report</b>.pdf");

    for (const char* link : {"http://example.com/", "file:///etc/passwd", "relative.html"})
        Q_EMIT m.screen().wbEmail()->anchorClicked(QUrl(link));
    EXPECT_EQ(m.opened, QList<QUrl>{QUrl("http://example.com/")});

    m.clickRow(1);
    EXPECT_EQ(att->count(), 0);
    m.click("EMAILSOURCE");
    EXPECT_FALSE(m.screen().wbEmail()->isVisible());
    m.click("EMAIL");
    EXPECT_TRUE(m.screen().rtfEmail()->isVisible());
    EXPECT_EQ(m.screen().view().shownRow(), 1);
}

// Catches an overview row that opens the screen on the wrong folder, and a
// crash on the source of no message.
TEST(EmailScreen, OverviewRowOpensItsFolder) {
    Main m;
    m.add("2", "sent one", "me@x.org", MessageRow{0, "t", {}, {}});
    m.w->ShowScreen("Overview");
    QListWidget* overview = m.w->overviewList();
    ASSERT_TRUE(overview && !overview->findItems("  Sent", Qt::MatchExactly).isEmpty());
    overview->setCurrentItem(overview->findItems("  Sent", Qt::MatchExactly)[0]);
    m.w->overviewListReleased();
    EXPECT_EQ(m.w->state().currentScreen, "Email");
    EXPECT_EQ(m.screen().view().currentFolder(), "2");
    ASSERT_EQ(m.screen().MLmessages()->topLevelItemCount(), 1);
    EXPECT_EQ(m.screen().MLmessages()->topLevelItem(0)->text(4), "sent one");
    m.click("EMAILSOURCE"); // nothing shown: an empty source, no crash
    EXPECT_TRUE(m.screen().rtfEmail()->toPlainText().isEmpty());
}

// Catches an unread colour that vanishes into the theme's text or background.
TEST(EmailScreen, UnreadColourStandsApart) {
    for (const QColor& fore : {QColor(255, 190, 40), QColor(200, 200, 200), QColor(0, 0, 0)})
        for (const QColor& back : {QColor(0, 0, 0), QColor(255, 255, 255), QColor(80, 170, 255)}) {
            const QColor c = EmailScreen::unreadColour(fore, back);
            EXPECT_NE(c, fore);
            EXPECT_NE(c, back);
        }
}

// Moving, renaming or deleting the folder shown are the whole-program
// folder test's. Catches: deleting that opens (and marks read) the
// neighbouring row, a Delete key that does nothing, a delete in "Deleted"
// that moves the messages again instead of removing them, an attachment
// double click that does nothing or proposes the sender's path instead of
// a plain name, and "Mail" staying in the last folder.
TEST(EmailScreen, DeleteKeySaveAndMailGoesBackToTheInbox) {
    Main m;
    for (const QByteArray n : {"a", "b", "c"})
        m.add("0", n, "x@y.org", {}, {{"name=\"../" + n + ".txt\"", "bytes of " + n}});
    m.click("EMAIL");
    FolderScreen& f = *m.w->folderScreen();
    QTreeWidget* list = m.screen().MLmessages();
    list->topLevelItem(0)->setSelected(true);
    list->topLevelItem(2)->setSelected(true);
    QKeyEvent del(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QApplication::sendEvent(list, &del);
    EXPECT_EQ(m.sink.asked.back().text, "Are you sure to delete 2 Message(s)?");
    ASSERT_EQ(list->topLevelItemCount(), 1);
    EXPECT_EQ(m.w->mailStore()->readIndexRow("0", 2)->readed, 0);
    EXPECT_EQ(m.w->mailStore()->FillMessageIndexList("3").size(), 2u);

    m.clickRow(0);
    m.screen().lvAttachments()->item(0)->setSelected(true);
    QString proposed;
    f.setSaveChooser([&](const QString& name, const QString&) {
        proposed = name;
        return m.dir.file("saved.txt");
    });
    Q_EMIT m.screen().lvAttachments()->itemActivated(m.screen().lvAttachments()->item(0));
    EXPECT_EQ(proposed, "b.txt");
    EXPECT_EQ(test::readAll(m.dir.file("saved.txt")), "bytes of b");

    f.openFolder("3");
    EXPECT_EQ(f.lblFolder()->text(), "Deleted");
    list->selectAll();
    QApplication::sendEvent(list, &del);
    EXPECT_TRUE(m.w->mailStore()->FillMessageIndexList("3").empty());
    m.click("EMAIL");
    EXPECT_EQ(f.lblFolder()->text(), "Inbox");
}

} // namespace
