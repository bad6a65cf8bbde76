#include "ui/HoverPass.h"

#include "SkinFixture.h"
#include "ui/SkinButton.h"

#include <QApplication>
#include <QMouseEvent>

using namespace mirel;
using namespace mirel::test;

namespace {

class HoverPassTest : public SkinFixture {
protected:
    void SetUp() override {
        SkinFixture::SetUp();
        engine.LayoutSection(*host, "DEFAULT", skin);
        host->show();
    }
    // A pass with the pointer at the centre of button i (0 = nowhere).
    void pointAt(int i) {
        if (i == 0) {
            HoverPass(*host, QPoint(-100, -100), nullptr);
            return;
        }
        SkinButton* b = host->button(i);
        HoverPass(*host, b->mapToGlobal(b->rect().center()), b);
    }
    bool lit(int i) { return host->button(i)->isLit(); }
};

TEST_F(HoverPassTest, EnteringLightsAndSoundsLeavingUnlights) {
    const int before = sounds.requestCount();
    auto centre = [&] {
        SkinButton* b = host->button(1);
        return b->grab().toImage().pixelColor(b->rect().center());
    };
    EXPECT_EQ(centre(), QColor(0, 0, 200)); // button.bmp
    pointAt(1);
    EXPECT_TRUE(lit(1));
    EXPECT_EQ(centre(), QColor(255, 255, 0)); // buttona.bmp
    // Button 1 has the hover sound "click", a real WAV in the theme.
    EXPECT_EQ(sounds.requestCount(), before + 1);
    pointAt(1);
    EXPECT_EQ(sounds.requestCount(), before + 1); // staying over it plays nothing
    pointAt(0);
    EXPECT_FALSE(lit(1));
    EXPECT_EQ(sounds.requestCount(), before + 1);
}

TEST_F(HoverPassTest, MovingStraightOntoTheNextButton) {
    pointAt(3);
    EXPECT_TRUE(lit(3));
    pointAt(4);
    EXPECT_FALSE(lit(3));
    EXPECT_TRUE(lit(4));
    // Over a widget that is not the button (a picture lies on top): not over it.
    SkinButton* b = host->button(4);
    HoverPass(*host, b->mapToGlobal(b->rect().center()), host.get());
    EXPECT_FALSE(lit(4));
}

TEST_F(HoverPassTest, SelectedPriorityButtonKeepsItsLitPicture) {
    // Slot 0 holds button 3 (a "B0" line), slot 1 button 4.
    host->selectPriority(0);
    EXPECT_EQ(host->state().selectedPriorityButton, 3);
    EXPECT_TRUE(lit(3));
    pointAt(3);
    pointAt(0);
    EXPECT_TRUE(lit(3));
    pointAt(4);
    pointAt(0);
    EXPECT_FALSE(lit(4));

    // Selecting another priority puts the first back to normal.
    host->selectPriority(1);
    EXPECT_FALSE(lit(3));
    EXPECT_TRUE(lit(4));
    // A slot without a button selects none.
    host->selectPriority(5);
    EXPECT_EQ(host->state().selectedPriorityButton, 0);
    EXPECT_FALSE(lit(4));
}

TEST_F(HoverPassTest, SwappedPictureKeepsTheLitState) {
    pointAt(1);
    host->setButtonPicture(1, folders.themeFile("logo.bmp"));
    EXPECT_TRUE(lit(1));
    EXPECT_TRUE(host->button(1)->picturePath().endsWith("logo.bmp"));
}

TEST_F(HoverPassTest, NothingWhileClosing) {
    host->state().closing = true;
    pointAt(1);
    EXPECT_FALSE(lit(1));
    EXPECT_EQ(sounds.requestCount(), 0);
}

TEST_F(HoverPassTest, MouseEventsOverTheWindowRunThePass) {
    auto send = [](QWidget* to, QEvent::Type type, QPoint local) {
        QMouseEvent e(type, local, to->mapToGlobal(local), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
        QApplication::sendEvent(to, &e);
    };
    SkinButton* b = host->button(2);
    send(b, QEvent::MouseMove, b->rect().center());
    EXPECT_TRUE(lit(2));
    // Moving over the bare window: the pointer left the button.
    send(host.get(), QEvent::MouseMove, QPoint(500, 500));
    EXPECT_FALSE(lit(2));
    // The window's own event at a button's spot finds the button under it.
    send(host.get(), QEvent::MouseButtonPress, host->button(3)->geometry().center());
    EXPECT_TRUE(lit(3));
}

} // namespace
