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

class LayoutEngineTest : public SkinFixture {
protected:
    void layoutDefault() { engine.LayoutSection(*host, "DEFAULT", skin); }
};

// Catches a picture named in another case than on disk not found, a command
// cut at its commas, and controls anchored to the right edge left where the
// old width put them after a resize (outside a narrower window).
TEST_F(LayoutEngineTest, DefaultSectionFindsPicturesAndFollowsAResize) {
    layoutDefault();
    SkinState& s = host->state();
    ASSERT_EQ(s.buttonCount(), 4);
    EXPECT_EQ(host->controlCount(), 5);
    EXPECT_TRUE(s.button(2).picturePath.endsWith("/button.bmp"));
    EXPECT_EQ(s.button(2).command, "\"/usr/bin/prog\" -a,b,c");
    EXPECT_FALSE(host->picture(1)->pixmap().isNull());
    EXPECT_TRUE(host->picture(1)->testAttribute(Qt::WA_TransparentForMouseEvents));

    host->resize(800, 600);
    LayoutEngine::Relayout(*host);
    EXPECT_EQ(host->button(2)->geometry(), QRect(750, 10, 40, 20));
    EXPECT_EQ(host->picture(1)->geometry(), QRect(400, 0, 60, 40));
}

// Catches the override file not read or read past a gap in the numbers, a
// caption cut at its comma, and a clear that leaves screen controls, tables,
// a lit priority button or the list behind, so a second visit differs from
// the first or a second "DEFAULT" adds a second set.
TEST_F(LayoutEngineTest, ScreenSectionAndClearReturnExactlyToTheRecordedState) {
    layoutDefault();
    const SkinTables before = host->state().tables;
    const int controlsBefore = host->controlCount();

    host->state().currentScreen = "Notes";
    engine.LayoutSection(*host, "Notes", skin);
    SkinState& s = host->state();
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
    EXPECT_EQ(host->controlCount(), controlsBefore);
    EXPECT_EQ(s.buttonCount(), before.buttons.size());
    EXPECT_EQ(s.tables.labels + s.tables.animations + s.tables.themePicture, 0);
    EXPECT_TRUE(s.tables.mailButtons.isEmpty());
    EXPECT_EQ(host->generalList(), nullptr);
    EXPECT_FALSE(host->button(3)->isLit());
    EXPECT_EQ(host->placedIfAny(PlacedPart::MessageList), nullptr);

    engine.LayoutSection(*host, "Notes", skin);
    EXPECT_EQ(host->button(5)->index(), 5);
    engine.ClearScreen(*host);
    layoutDefault();
    EXPECT_EQ(host->controlCount(), controlsBefore);
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
    const QPointF at = own->rect().center();
    for (auto [type, buttons] : {std::pair{QEvent::MouseButtonPress, Qt::LeftButton},
                                 std::pair{QEvent::MouseButtonRelease, Qt::NoButton}}) {
        QMouseEvent e(type, at, own->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(own, &e);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(h.state().currentScreen, "Email");
    EXPECT_TRUE(h.overviewList());
}

// Catches a mail dialog control built for the wrong selector: "emailbut"
// reads its element number from the ninth character on, any other text
// selector is the subject field, an unknown one makes nothing.
TEST_F(LayoutEngineTest, FixedMailDialogControls) {
    engine.LayoutSection(*host, "MAILDIALOG", terminal);
    EXPECT_TRUE(qobject_cast<QComboBox*>(host->special("emailaccounts")));
    auto* but = qobject_cast<QPushButton*>(host->special("emailbut3"));
    ASSERT_TRUE(but);
    EXPECT_FALSE(but->icon().isNull());
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
    EXPECT_TRUE(engine.context().animated);
    writeAll(file, "[STARTUP]\r\nAnimated=0\r\n");
    engine.readAnimation("STARTUP", file);
    EXPECT_FALSE(engine.context().animated);
    EXPECT_EQ(engine.context().animDelay, 35);
}

} // namespace
