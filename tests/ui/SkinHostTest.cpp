// The window host over the test theme: what reaches the window, the hover
// pass and what a screen reader sees.
#include "SkinFixture.h"
#include "ui/HoverPass.h"
#include "ui/SkinButton.h"

#include <QAccessible>
#include <QMouseEvent>

using namespace mirel;
using namespace mirel::test;

namespace {

class SkinHostTest : public SkinFixture {
protected:
    void SetUp() override {
        SkinFixture::SetUp();
        layoutDefault();
        host->show();
    }
    // A hover pass with the pointer at the centre of button i (0 = nowhere).
    void pointAt(int i) {
        if (i == 0)
            return HoverPass(*host, QPoint(-100, -100), nullptr);
        SkinButton* b = host->button(i);
        HoverPass(*host, b->mapToGlobal(b->rect().center()), b);
    }
    bool lit(int i) { return host->button(i)->isLit(); }
};

// Catches clicks, list releases or mode clicks that never reach the window,
// and any of them acted on while the window is closing.
TEST_F(SkinHostTest, ClicksAndReleasesReachTheWindowUnlessItIsClosing) {
    struct RecordingHost : SkinHost {
        int general = 0, overview = 0;
        QList<int> clicks, modes;
        void buttonClicked(int index) override { clicks.append(index); }
        void generalListReleased() override { ++general; }
        void overviewListReleased() override { ++overview; }
        void modeButtonClicked(int i) override { modes.append(i); }
    } h;
    engine.LayoutSection(h, "DEFAULT", skin);
    engine.LayoutSection(h, "Email", skin);
    h.button(1)->click();
    send(h.overviewList()->viewport(), QEvent::MouseButtonRelease, QPoint(2, 2), Qt::LeftButton);
    send(h.generalList()->viewport(), QEvent::MouseButtonRelease, QPoint(2, 2), Qt::LeftButton);
    h.modeButton(1)->click();
    h.state().closing = true;
    h.button(1)->click();
    send(h.generalList()->viewport(), QEvent::MouseButtonRelease, QPoint(2, 2), Qt::LeftButton);
    EXPECT_EQ(h.clicks, QList<int>{1});
    EXPECT_EQ(h.overview + h.general, 2);
    EXPECT_EQ(h.modes, QList<int>{1});
}

// Catches a button not lit (or not painted lit) on entering, a hover sound
// played again while the pointer stays, a button left lit when the pointer
// moves straight to the next one or under a picture, a swapped picture that
// drops the lit state, the selected priority button losing its lit picture
// when the pointer passes or keeping it when another is selected (an empty
// slot selects none), mouse events over the window that do not run the
// pass, and a pass that runs while the window is closing.
TEST_F(SkinHostTest, HoverLightsSoundsAndUnlightsButKeepsThePriority) {
    auto centre = [&] {
        SkinButton* b = host->button(1);
        return b->grab().toImage().pixelColor(b->rect().center());
    };
    EXPECT_EQ(centre(), QColor(0, 0, 200)); // button.bmp
    pointAt(1);
    pointAt(1);
    EXPECT_EQ(centre(), QColor(255, 255, 0)); // buttona.bmp
    // Button 1 has the hover sound "click", a real WAV in the theme.
    EXPECT_EQ(sounds.requestCount(), 1);
    host->setButtonPicture(1, folders.themeFile("logo.bmp"));
    EXPECT_TRUE(lit(1));
    pointAt(4);
    EXPECT_FALSE(lit(1));
    EXPECT_TRUE(lit(4));
    SkinButton* b = host->button(4);
    HoverPass(*host, b->mapToGlobal(b->rect().center()), host.get());
    EXPECT_FALSE(lit(4));

    // Slot 0 holds button 3 (a "B0" line), slot 1 button 4.
    host->selectPriority(0);
    pointAt(3);
    pointAt(0);
    EXPECT_TRUE(lit(3));
    host->selectPriority(1);
    EXPECT_TRUE(!lit(3) && lit(4));
    host->selectPriority(5);
    EXPECT_FALSE(lit(4));

    // Mouse events over the window run the pass: a move onto a button, off
    // it onto the bare window, and the window's own press at a button's spot.
    send(host->button(2), QEvent::MouseMove, host->button(2)->rect().center());
    EXPECT_TRUE(lit(2));
    send(host.get(), QEvent::MouseMove, QPoint(500, 500));
    EXPECT_FALSE(lit(2));
    send(host.get(), QEvent::MouseButtonPress, host->button(3)->geometry().center());
    EXPECT_TRUE(lit(3));

    host->state().closing = true;
    pointAt(2);
    EXPECT_FALSE(lit(2));
    EXPECT_EQ(sounds.requestCount(), 1);
}

// Catches a control a screen reader cannot name (the whole-program tests
// find only buttons and boxes by name), and a cleared control that stays in
// the accessibility tree: a later control at the same address would inherit
// the stale entry.
TEST_F(SkinHostTest, EveryControlIsNamedAndLeavesTheTreeWhenCleared) {
    engine.LayoutSection(*host, "Notes", skin);
    ASSERT_GT(host->controlCount(), 10);
    for (int i = 1; i <= host->controlCount(); ++i)
        EXPECT_FALSE(QAccessible::queryAccessibleInterface(host->control(i))
                         ->text(QAccessible::Name)
                         .isEmpty())
            << host->control(i)->metaObject()->className();
    const QAccessible::Id id =
        QAccessible::uniqueId(QAccessible::queryAccessibleInterface(host->button(6)));
    engine.ClearScreen(*host);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
}

} // namespace
