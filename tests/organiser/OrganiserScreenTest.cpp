// Screen flows of the organiser in the real main window, offscreen. The whole
// program drives every item screen through the accessibility layer (typing
// kept or dropped as answered, a calendar day kept across a month change);
// these cover what it does not: rows clicked back into the boxes, deleting,
// keys, Cancel, the calendar's tab order and the done button.
#include "MainWindowHarness.h"
#include "ui/SkinButton.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTextEdit>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

struct Main : test::MainWindowHarness {
    Main()
        : MainWindowHarness("skins/organiser/Mirel.skn",
                            QDateTime(QDate(2006, 11, 16), QTime(16, 45, 12))) {
        start([](frmMain& w) { w.resize(1024, 768); });
    }
    void clickRow(int row) {
        w->generalList()->setCurrentRow(row);
        w->generalListReleased();
    }
};

// Faults: a clicked row did not fill the boxes, a delete answered No went
// ahead, a delete left the file or the row behind, Cancel on leaving with typed text left the
// screen anyway, the calendar's tab followed the order the skin made the boxes in, not the
// days, and a day's typing was lost when another month was chosen; then the button of the
// screen already shown refilled it, so the next
// save wrote a second item; Ctrl+S did nothing; Tab stayed in the text; a
// delete answered No hid the done button; the done button was shown before a
// task was chosen or did not mark it.
TEST(OrganiserScreen, NoteClickDeleteCancelledLeaveCalendarTabOrderAndTodoKeys) {
    Main m;
    test::writeAll(m.file("Notes/1.not"), "Title\r\nMilch\r\nBrot\r\n");
    m.click("NOTES");
    m.clickRow(0);
    EXPECT_EQ(m.w->multiLine(1)->toPlainText(), "Milch\nBrot\n");
    m.sink.answer = false;
    m.click("NOTEDELETE");
    EXPECT_TRUE(QFile::exists(m.file("Notes/1.not")));
    m.sink.answer = true;
    m.click("NOTEDELETE");
    EXPECT_FALSE(QFile::exists(m.file("Notes/1.not")));
    EXPECT_EQ(m.w->generalList()->count(), 0);

    m.sink.threeWay = MessageSink::Answer::Cancel;
    m.w->multiLine(1)->setPlainText("typed");
    m.click("TODO");
    EXPECT_EQ(m.sink.asked.size(), 3u); // the two deletes' questions, then this one
    EXPECT_EQ(m.w->state().currentScreen, "Notes");
    EXPECT_TRUE(QDir(m.file("Notes")).isEmpty());

    m.sink.threeWay = MessageSink::Answer::No;
    m.click("CALENDAR");
    ASSERT_NE(m.w->textBox(2), nullptr);
    EXPECT_EQ(m.w->textBox(1)->nextInFocusChain(), m.w->textBox(2));
    m.w->textBox(2)->setText("dentist");
    m.click("MONTHMAR");
    EXPECT_TRUE(test::readAll(m.file("calendar.ini")).contains("1102=100101110"));

    m.click("TODO");
    SkinButton* done = m.w->button(m.w->state().tables.doneButton);
    ASSERT_NE(done, nullptr);
    EXPECT_TRUE(done->isHidden());
    m.click("TODOADD");
    m.w->multiLine(1)->setPlainText("buy milk");
    m.click("TODOSAVE");
    m.clickRow(0);
    m.w->multiLine(1)->setPlainText("buy oat milk");
    m.click("TODO");
    QKeyEvent ctrlS(QEvent::KeyPress, Qt::Key_S, Qt::ControlModifier);
    QApplication::sendEvent(m.w->multiLine(1), &ctrlS);
    EXPECT_EQ(QDir(m.file("Todo")).entryList(QDir::Files), QStringList{"20061116164512.tod"});
    EXPECT_EQ(test::readAll(m.file("Todo/20061116164512.tod")), "0\r\nbuy oat milk\r\n");
    EXPECT_TRUE(m.w->multiLine(1)->tabChangesFocus());
    m.clickRow(0);
    m.sink.answer = false;
    m.click("TODODELETE");
    EXPECT_FALSE(done->isHidden());
    m.click("TODODONE");
    EXPECT_EQ(m.rows(m.w->generalList()), QStringList{"DONE  buy oat milk"});
}

} // namespace
