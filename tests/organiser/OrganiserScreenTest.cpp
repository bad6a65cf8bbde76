// Screen flows of the organiser in the real main window, offscreen: skin
// buttons clicked, boxes typed into, list rows clicked, files checked. The
// whole program drives every item screen through the accessibility layer;
// these cover what it does not: rows clicked back into the boxes, deleting,
// and the done button.
#include "TestSupport.h"
#include "app/frmMain.h"
#include "platform/Clock.h"
#include "platform/SettingsStore.h"
#include "ui/SkinButton.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QTextEdit>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

QByteArray skin() {
    QByteArray s = "[DEFAULT]\r\nBackGround=0,0,0\r\n";
    const char* screens[] = {"NOTES", "TODO", "CALENDAR"};
    for (int i = 0; i < 3; ++i)
        s += "0" + QByteArray::number(i + 1) + "=B,b.bmp,0," + QByteArray::number(i * 20) +
             ",50,20,,,False," + screens[i] + "\r\n";
    s += "[OVERVIEW]\r\ntextA=\"Calendar \"\r\ntextB=\"Tasks \"\r\ntextC=\"Agenda \"\r\n"
         "01=L,overview,60,0,0,0,255,255,255,0,0,0,Sans,9\r\n";
    s += "[Notes]\r\n01=L,list,60,0,200,300,0,0,0,255,255,255,Sans,9\r\n"
         "02=T,title,300,0,200,20,0,0,0,255,255,255,Sans,9\r\n"
         "03=M,body,300,30,200,200,0,0,0,255,255,255,Sans,9\r\n"
         "04=B,b.bmp,60,400,50,20,,,False,NOTEADD\r\n"
         "05=B,b.bmp,120,400,50,20,,,False,NOTESAVE\r\n"
         "06=B,b.bmp,180,400,50,20,,,False,NOTEDELETE\r\n";
    s += "[Todo]\r\n01=L,list,60,0,200,300,0,0,0,255,255,255,Sans,9\r\n"
         "02=M,text,300,30,200,200,0,0,0,255,255,255,Sans,9\r\n"
         "03=B,b.bmp,60,400,50,20,,,False,TODOADD\r\n"
         "04=B,b.bmp,120,400,50,20,,,False,TODOSAVE\r\n"
         "05=BD,b.bmp,180,400,50,20,,,False,TODODONE\r\n"
         "06=B,b.bmp,240,400,50,20,,,False,TODODELETE\r\n";
    // A list between the first two day boxes: tab must still go day to day.
    s += "[Calendar]\r\n01=T,d1,300,30,40,20,0,0,0,255,255,255,Sans,9\r\n"
         "02=L,list,60,0,200,300,0,0,0,255,255,255,Sans,9\r\n"
         "03=T,d2,350,30,40,20,0,0,0,255,255,255,Sans,9\r\n"
         "04=B,b.bmp,60,400,50,20,,,False,MONTHMAR\r\n";
    return s;
}

struct Main {
    test::TempDir dir;
    SettingsStore store{dir.file("config")};
    test::RecordingMessageSink sink;
    FixedClock clock{QDateTime(QDate(2006, 11, 16), QTime(16, 45, 12))};
    std::unique_ptr<frmMain> w;

    Main() {
        QDir().mkpath(dir.file("prog/theme"));
        test::writeAll(dir.file("prog/theme/Mirel.skn"), skin());
        test::writeAll(dir.file("prog/theme/terminal.skn"), "[DEFAULT]\r\nSound=0\r\n");
        store.SaveSetting(kFamilyApp, "Default", "ProgramDir", dir.file("prog").toUtf8());
        store.SaveSetting(kFamilyApp, "Default", "ThemeDir", "\\theme\\");
        w = std::make_unique<frmMain>(store, sink, clock);
        w->setSingleInstanceEnabled(false);
        w->setBundledThemeCandidates({dir.file("none")});
        w->resize(1024, 768);
        EXPECT_EQ(w->Form_Load(), frmMain::StartResult::Ready);
    }
    void click(const QByteArray& command) {
        for (int i = 1; i <= w->state().buttonCount(); ++i)
            if (w->state().button(i).command == command) {
                w->ClickButton(i);
                return;
            }
        ADD_FAILURE() << "no button " << command.constData();
    }
    void clickRow(int row) {
        w->generalList()->setCurrentRow(row);
        w->generalListReleased();
    }
    QStringList rows(QListWidget* list) const {
        QStringList out;
        for (int i = 0; list && i < list->count(); ++i)
            out << list->item(i)->text();
        return out;
    }
    QString file(const QString& rel) const { return dir.file("prog/Mirel/" + rel); }
};

TEST(OrganiserScreen, StartShowsTheOverviewWithItsFourSections) {
    Main m;
    EXPECT_EQ(m.rows(m.w->overviewList()),
              (QStringList{"  Agenda (0)", "  Calendar (0)", "E-Mail  (4)", "  Inbox", "  Outbox",
                           "  Sent", "  Deleted", "  Tasks (0)"}));
    EXPECT_TRUE(QFileInfo(m.file("directories.ini")).exists());
}

TEST(OrganiserScreen, NoteAddSaveClickDelete) {
    Main m;
    m.click("NOTES");
    m.click("NOTEADD");
    m.w->textBox(1)->setText(QString::fromUtf8("Einkauf für Sonntag"));
    m.w->multiLine(1)->setPlainText("Milch\nBrot");
    m.click("NOTESAVE");
    EXPECT_EQ(test::readAll(m.file("Notes/20061116164512.not")),
              QByteArray("Einkauf f\xFCr Sonntag\r\nMilch\r\nBrot\r\n"));
    EXPECT_EQ(m.rows(m.w->generalList()), QStringList{QString::fromUtf8("Einkauf für Sonntag")});
    EXPECT_TRUE(m.w->textBox(1)->text().isEmpty());

    m.clickRow(0);
    EXPECT_EQ(m.w->multiLine(1)->toPlainText(), "Milch\nBrot\n");
    m.click("NOTEDELETE");
    EXPECT_EQ(m.sink.asked.size(), 1u);
    EXPECT_FALSE(QFile::exists(m.file("Notes/20061116164512.not")));
    EXPECT_EQ(m.w->generalList()->count(), 0);
}

TEST(OrganiserScreen, TaskDoneButton) {
    Main m;
    m.click("TODO");
    SkinButton* done = m.w->button(m.w->state().tables.doneButton);
    ASSERT_NE(done, nullptr);
    EXPECT_FALSE(done->isVisible());
    m.click("TODOADD");
    m.w->multiLine(1)->setPlainText("buy milk");
    m.click("TODOSAVE");
    EXPECT_EQ(test::readAll(m.file("Todo/20061116164512.tod")), QByteArray("0\r\nbuy milk\r\n"));
    m.clickRow(0);
    EXPECT_FALSE(done->isHidden());
    m.click("TODODONE");
    // The box shows the text with its line end; saving adds one more.
    EXPECT_EQ(test::readAll(m.file("Todo/20061116164512.tod")),
              QByteArray("1\r\nbuy milk\r\n\r\n"));
    EXPECT_EQ(m.rows(m.w->generalList()), QStringList{"DONE  buy milk"});
}

// Faults: the button of the screen already shown refilled it, so the next
// save wrote a second item; Ctrl+S did nothing; Tab stayed in the text; a
// delete answered No hid the done button.
TEST(OrganiserScreen, ShownScreenButtonKeysAndRefusedDelete) {
    Main m;
    m.click("TODO");
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
    EXPECT_FALSE(m.w->button(m.w->state().tables.doneButton)->isHidden());
}

// Faults: tab followed the order the skin made the controls in, not the
// days; a day typed in was lost when the month changed under it.
TEST(OrganiserScreen, CalendarDayBoxesTabInDayOrderAndKeepWhatIsTyped) {
    Main m;
    m.click("CALENDAR");
    ASSERT_NE(m.w->textBox(2), nullptr);
    EXPECT_EQ(m.w->textBox(1)->nextInFocusChain(), m.w->textBox(2));

    m.w->textBox(2)->setText("dentist");
    m.click("MONTHMAR");
    EXPECT_TRUE(test::readAll(m.file("calendar.ini")).contains("1102=100101110"));
    EXPECT_TRUE(m.w->textBox(2)->text().isEmpty());
}

// Fault: leaving an editor with typed text dropped it without a word.
TEST(OrganiserScreen, LeavingAnEditorAsksToSaveWhatWasTyped) {
    using A = MessageSink::Answer;
    const std::tuple<A, const char*, qsizetype> rows[] = {
        {A::Cancel, "Notes", 0}, {A::No, "Todo", 0}, {A::Yes, "Todo", 1}};
    for (const auto& [answer, screenAfter, notes] : rows) {
        Main m;
        m.sink.threeWay = answer;
        m.click("NOTES");
        m.click("TODO");
        m.click("NOTES");
        EXPECT_TRUE(m.sink.asked.empty()) << "nothing typed, nothing asked";
        m.w->multiLine(1)->setPlainText("typed");
        m.click("TODO");
        EXPECT_EQ(m.sink.asked.size(), 1u);
        EXPECT_EQ(m.w->state().currentScreen, screenAfter);
        EXPECT_EQ(QDir(m.file("Notes")).entryList(QDir::Files).size(), notes);
    }
}

} // namespace
