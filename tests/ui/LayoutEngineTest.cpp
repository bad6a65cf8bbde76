#include "SkinFixture.h"
#include "ui/AnimatedPicture.h"
#include "ui/SkinButton.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>

using namespace mirel;
using namespace mirel::test;

namespace {

using LayoutEngineTest = SkinFixture;

// Catches a picture named in another case than on disk not found, a command
// cut at its commas, a picture that takes the clicks meant for the window
// (controls placed anew at every window size: whole program), the override
// file not read or read past a gap in the numbers, a caption cut at its
// comma, and a clear that leaves screen controls, tables, a lit priority
// button or the list behind, so a second visit differs from the first or a
// second "DEFAULT" adds a second set.
TEST_F(LayoutEngineTest, ScreenSectionAndClearReturnExactlyToTheRecordedState) {
    layoutDefault();
    SkinState& s = host->state();
    ASSERT_EQ(s.buttonCount(), 4);
    EXPECT_TRUE(s.button(2).picturePath.endsWith("/button.bmp"));
    EXPECT_EQ(s.button(2).command, "\"/usr/bin/prog\" -a,b,c");
    EXPECT_FALSE(host->picture(1)->pixmap().isNull());
    EXPECT_TRUE(host->picture(1)->testAttribute(Qt::WA_TransparentForMouseEvents));

    s.currentScreen = "Notes";
    engine.LayoutSection(*host, "Notes", skin);
    // 01..09 are read; "10" exists only in the override file and stops the run.
    ASSERT_EQ(s.buttonCount(), 6);
    EXPECT_EQ(s.tables.doneButton, 5);
    EXPECT_EQ(s.tables.mailButtons.value("emailreply"), 6);
    EXPECT_EQ(s.tables.animationFrames, 3);
    EXPECT_EQ(host->textBox(1)->width(), 300);
    EXPECT_EQ(host->label(1)->text(), "Day");

    QPointer<QWidget> screenButton = host->button(6);
    host->selectPriority(0);
    ASSERT_TRUE(host->button(3)->isLit());
    engine.ClearScreen(*host);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(screenButton.isNull());
    EXPECT_EQ(host->controlCount(), 5);
    EXPECT_EQ(s.buttonCount(), 4);
    EXPECT_EQ(host->generalList(), nullptr);
    EXPECT_FALSE(host->button(3)->isLit());

    engine.LayoutSection(*host, "Notes", skin);
    EXPECT_EQ(host->button(5)->index(), 5);
    engine.ClearScreen(*host);
    layoutDefault();
    EXPECT_EQ(host->controlCount(), 5);
}

// Catches a crash when the clicked button belongs to the screen its own
// command clears: it is taken down while its click is still running.
TEST_F(LayoutEngineTest, AButtonMayClearItsOwnScreen) {
    struct Switching : SkinHost {
        LayoutEngine* engine;
        QString skin;
        void buttonClicked(int index) override {
            if (index <= state().defaultButtonCount)
                return;
            engine->ClearScreen(*this);
            state().currentScreen = "Email";
            engine->LayoutSection(*this, "Email", skin);
        }
    } h;
    h.engine = &engine;
    h.skin = skin;
    h.resize(1024, 768);
    h.show();
    engine.LayoutSection(h, "DEFAULT", skin);
    engine.LayoutSection(h, "Notes", skin);
    SkinButton* own = h.button(6);
    ASSERT_TRUE(own);
    // Pressed and released: the release is still running when the screen goes.
    send(own, QEvent::MouseButtonPress, own->rect().center(), Qt::LeftButton);
    send(own, QEvent::MouseButtonRelease, own->rect().center(), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(h.state().currentScreen, "Email");
    EXPECT_TRUE(h.overviewList());
}

// Catches the two message views not sharing one place, and mail parts left
// showing on the next screen. (Which part shows when: the mail screen test.)
TEST_F(LayoutEngineTest, MailPartsShareOnePlaceAndGoWithTheScreen) {
    layoutDefault();
    engine.LayoutSection(*host, "Email", skin);
    QWidget* html = host->placed(PlacedPart::HtmlView);
    EXPECT_EQ(host->placed(PlacedPart::MessageBody)->geometry(), html->geometry());
    engine.ClearScreen(*host);
    for (QWidget* w :
         {host->placed(PlacedPart::MessageList), html, static_cast<QWidget*>(host->checkButton(1))})
        EXPECT_FALSE(w->isVisibleTo(host.get())) << w->objectName().toStdString();
}

// Catches a mail dialog text selector the program does not know made into
// nothing instead of the subject field, and an unknown name made into a
// control. (The buttons' numbers: whole-program compose test.)
TEST_F(LayoutEngineTest, FixedMailDialogControls) {
    engine.LayoutSection(*host, "MAILDIALOG", terminal);
    EXPECT_TRUE(qobject_cast<QComboBox*>(host->special("emailaccounts")));
    EXPECT_EQ(host->special("emailtextsubject")->geometry(), QRect(10, 100, 100, 20));
    EXPECT_FALSE(host->hasSpecial("emailbogus"));
}

// Catches a crash, a message or a lost screen on broken, cut-off or missing
// files and lines, and a missing theme that does anything but nothing.
TEST_F(LayoutEngineTest, BadLinesShowWhatCanBeShown) {
    engine.LayoutSection(*host, "Broken", skin);
    SkinState& s = host->state();
    EXPECT_EQ(s.tables.animations, 1);
    EXPECT_EQ(s.tables.animationFrames, 1);
    EXPECT_EQ(s.tables.pictures, 1);
    EXPECT_TRUE(host->picture(1)->pixmap().isNull());
    EXPECT_EQ(s.buttonCount(), 2);
    EXPECT_EQ(host->button(1)->geometry(), QRect(0, 0, 0, 0));
    EXPECT_EQ(s.tables.labels + s.tables.textBoxes, 2);
    EXPECT_GE(host->textBox(1)->x(), 0);

    Folders nowhere;
    nowhere.ProgramDir = dir.file("none");
    nowhere.ThemeDir = "\\gone\\";
    LayoutEngine lost(SkinContext{nowhere, ini, nullptr, true, 1});
    SkinHost empty;
    lost.LayoutSection(empty, "DEFAULT", nowhere.skinFile());
    EXPECT_EQ(empty.controlCount(), 0);
    lost.ClearScreen(empty);
    EXPECT_TRUE(sink.shown.empty());
}

// Catches a build that goes on to use a host closed during one of its
// pauses. (That the pauses keep events flowing, so an exit request during
// start-up is heard, runs in the whole program.)
TEST_F(LayoutEngineTest, HostClosedDuringThePauseStopsTheBuild) {
    engine.setAnimation(true, 10);
    auto* doomed = new SkinHost;
    QTimer::singleShot(15, doomed, [doomed] { doomed->deleteLater(); });
    QPointer<SkinHost> guard(doomed);
    engine.LayoutSection(*doomed, "Notes", skin);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(guard.isNull());
}

// Catches the engine ignoring the switches of the section it is told to read
// (dialogs use their own) and a missing key resetting the value.
TEST_F(LayoutEngineTest, AnimationSwitchesFromTheNamedSection) {
    const QString file = dir.file("terminal.skn");
    writeAll(file, "[STARTUP]\r\nAnimated=True\r\nAnimDelay=35\r\n");
    engine.readAnimation("STARTUP", file);
    writeAll(file, "[STARTUP]\r\nAnimated=0\r\n");
    engine.readAnimation("STARTUP", file);
    EXPECT_FALSE(engine.context().animated);
    EXPECT_EQ(engine.context().animDelay, 35);
}

} // namespace
