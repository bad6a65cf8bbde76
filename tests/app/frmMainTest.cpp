#include "MainWindowHarness.h"
#include "skin/SkinState.h"
#include "ui/SkinButton.h"

#include <QApplication>
#include <QTimer>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

struct Main : test::MainWindowHarness {
    QList<QByteArray> opened;
    QList<QByteArray> prompts; // answers, consumed in order
    int prompted = 0;

    Main() : MainWindowHarness("skins/main/Mirel.skn", QDateTime(QDate(2024, 5, 1), QTime(9, 0))) {
        store.SaveSetting(kFamilyApp, kVoiceSection, kVoiceKey, "left over");
        store.SaveSetting(kFamilyApp, kExitSection, kExitKey, "1");
    }
    frmMain& start() {
        return MainWindowHarness::start([this](frmMain& w) {
            w.setPasswordPause(0);
            w.setOpenHandler([this](const QByteArray& c) { opened << c; });
            w.setPasswordPrompt([this] {
                ++prompted;
                return prompts.isEmpty() ? QByteArray() : prompts.takeFirst();
            });
        });
    }
};

} // namespace

// Catches a start-up that misses the skin's colours, folder titles or the
// rectangle the shell publishes, or leaves a stale exit flag or command in
// the mailboxes; then a screen laid out again when it is shown already, a
// command matched loosely, a priority command that selects no button or the
// wrong slot's (its lit picture is the layout tests'), and a control left or
// a click taking effect after "QUIT".
TEST(frmMain, StartUpScreensCommandsAndQuit) {
    Main m;
    m.store.SaveSetting(kFamilyApp, "General", "Running", "True");
    for (const auto& [edge, value] : {std::pair("Left", "40"), std::pair("Top", "30"),
                                      std::pair("Right", "840"), std::pair("Bottom", "630")})
        m.store.SaveSetting(kFamilyApp, "Screen", edge, value);
    frmMain& w = m.start();
    EXPECT_TRUE(w.Ready());
    EXPECT_EQ(w.palette().color(QPalette::Window), QColor(10, 20, 30));
    EXPECT_EQ(w.MailFolderTitle(), (std::array<QByteArray, 4>{"In", "", "", "Bin"}));
    EXPECT_EQ(w.geometry(), QRect(40, 30, 800, 600));
    EXPECT_EQ(m.store.GetSetting(kFamilyApp, kExitSection, kExitKey), "0");
    EXPECT_EQ(m.store.GetSetting(kFamilyApp, kVoiceSection, kVoiceKey), "");
    EXPECT_TRUE(test::readAll(m.dir.file("prog/debug.txt")).contains("Mirel: Ready"));

    const int base = 7; // the DEFAULT buttons stay; the overview goes

    m.click("notes"); // lower case in the skin still matches
    EXPECT_EQ(w.state().currentScreen, "Notes");
    EXPECT_EQ(w.controlCount(), base + 2);
    m.click("notes");
    EXPECT_EQ(w.controlCount(), base + 2) << "the shown screen is not laid out twice";

    m.click("TODO");
    EXPECT_EQ(w.state().currentScreen, "Todo");
    EXPECT_EQ(w.controlCount(), base + 3);
    m.click("AGENDAP1");
    EXPECT_GT(w.selectedPriorityButton(), 0);
    EXPECT_EQ(w.selectedPriorityButton(), w.state().tables.prioritySlots[1]);

    m.click("Calendar2");
    EXPECT_EQ(w.state().currentScreen, "Todo");
    EXPECT_EQ(m.opened, QList<QByteArray>{"Calendar2"}) << "no match: started as written";

    m.click("QUIT");
    EXPECT_TRUE(w.ended());
    EXPECT_EQ(w.controlCount(), 0);
    m.click("TODO");
    EXPECT_EQ(w.state().currentScreen, "") << "nothing reacts after shut-down";
}

// Catches a protected button that opens on a wrong or empty password, and
// a screen button's flag read from the wrong section. (An empty stored
// password opening on an empty entry: the dropped-clicks test.)
TEST(frmMain, PasswordGateGuardsProtectedButtons) {
    Main m;
    m.store.SaveSetting(kFamilyApp, "DEFAULT", "Password", "Secret");
    m.start();
    m.prompts = {"secret", "", "Secret"};
    for (int i = 0; i < 3; ++i)
        m.click("\"/opt/my tool\" -a");
    EXPECT_EQ(m.prompted, 3);
    EXPECT_EQ(m.opened.size(), 1) << "only the exact password opens";

    // The flag of a screen button is read from the screen's own section.
    m.click("TODO");
    m.prompts = {"wrong"};
    m.click("TODOADD");
    EXPECT_EQ(m.prompted, 4);
}

// Catches a click taken while a modal command runs, and the busy flag left
// set afterwards.
TEST(frmMain, ClicksDuringACommandAreDropped) {
    Main m;
    frmMain& w = m.start();
    int nested = 0;
    w.setPasswordPrompt([&] {
        // The password dialog is modal: everything else is ignored meanwhile.
        m.click("TODO");
        m.click("RUNME");
        ++nested;
        return QByteArray();
    });
    m.click("\"/opt/my tool\" -a");
    EXPECT_EQ(nested, 1);
    EXPECT_EQ(w.state().currentScreen, "Overview");
    EXPECT_EQ(m.opened, QList<QByteArray>{"\"/opt/my tool\" -a"});
    m.click("RUNME");
    EXPECT_EQ(m.opened.size(), 2) << "the flag is cleared afterwards";
}

// Catches a shut-down request that waits for the password dialog, or runs
// the interrupted command after it.
TEST(frmMain, ExitWhileThePasswordDialogIsOpenCancelsItAndShutsDown) {
    Main m;
    frmMain& w = m.start();
    w.setPasswordPrompt({}); // the real skinned dialog
    QTimer::singleShot(50, [&] {
        EXPECT_NE(QApplication::activeModalWidget(), nullptr);
        m.store.SaveSetting(kFamilyApp, kExitSection, kExitKey, "1");
    });
    QTimer::singleShot(5000, [] { // never hang the suite
        if (QWidget* modal = QApplication::activeModalWidget())
            modal->close();
    });
    m.click("\"/opt/my tool\" -a");
    EXPECT_TRUE(w.ended());
    EXPECT_TRUE(m.opened.isEmpty()) << "the interrupted command does not run";
    EXPECT_EQ(w.controlCount(), 0);
}
