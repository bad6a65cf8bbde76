#include "SkinFixture.h"
#include "ui/SkinButton.h"

#include <QAccessible>
#include <QMouseEvent>

using namespace mirel;
using namespace mirel::test;

namespace {

struct RecordingHost : SkinHost {
    int general = 0, overview = 0;
    QList<int> modes;
    void generalListReleased() override { ++general; }
    void overviewListReleased() override { ++overview; }
    void modeButtonClicked(int i) override { modes.append(i); }
};

class SkinHostTest : public SkinFixture {};

void release(QWidget* w) {
    QMouseEvent e(QEvent::MouseButtonRelease, QPointF(2, 2), w->mapToGlobal(QPointF(2, 2)),
                  Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(w, &e);
}

TEST_F(SkinHostTest, ListReleasesAndModeClicksReachTheWindow) {
    RecordingHost h;
    h.resize(1024, 768);
    engine.LayoutSection(h, "Email", skin);
    release(h.overviewList()->viewport());
    release(h.generalList()->viewport());
    release(h.generalList()->viewport());
    EXPECT_EQ(h.overview, 1);
    EXPECT_EQ(h.general, 2);
    h.modeButton(1)->click();
    EXPECT_EQ(h.modes, QList<int>{1});
    // While the window is closing the lists stay quiet.
    h.state().closing = true;
    release(h.generalList()->viewport());
    EXPECT_EQ(h.general, 2);
}

TEST_F(SkinHostTest, EveryCreatedControlHasAnAccessibleName) {
    engine.LayoutSection(*host, "DEFAULT", skin);
    engine.LayoutSection(*host, "Notes", skin);
    engine.LayoutSection(*host, "Email", skin);
    ASSERT_GT(host->controlCount(), 10);
    for (int i = 1; i <= host->controlCount(); ++i) {
        QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(host->control(i));
        ASSERT_TRUE(iface);
        EXPECT_FALSE(iface->text(QAccessible::Name).isEmpty())
            << host->control(i)->metaObject()->className();
    }
    for (QWidget* w :
         {host->placedIfAny(PlacedPart::MessageList), host->placedIfAny(PlacedPart::HtmlView)}) {
        ASSERT_TRUE(w);
        EXPECT_FALSE(w->accessibleName().isEmpty());
    }
}

TEST_F(SkinHostTest, ClearedControlsLeaveTheAccessibilityTree) {
    // A screen reader that saw a control must learn of its end, or a later
    // control at the same address would inherit the stale entry.
    engine.LayoutSection(*host, "DEFAULT", skin);
    engine.LayoutSection(*host, "Notes", skin);
    QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(host->button(6));
    ASSERT_TRUE(iface);
    const QAccessible::Id id = QAccessible::uniqueId(iface);
    engine.ClearScreen(*host);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
}

// Catches a clear that reaches for mail parts never placed, and a second
// layout of the same section that adds a second set of controls.
TEST_F(SkinHostTest, ClearingTouchesOnlyWhatExists) {
    engine.LayoutSection(*host, "DEFAULT", skin);
    engine.ClearScreen(*host);
    EXPECT_EQ(host->placedIfAny(PlacedPart::MessageList), nullptr);
    EXPECT_EQ(host->state().buttonCount(), 4);
    // Laying out "DEFAULT" again starts from nothing instead of adding a second set.
    engine.LayoutSection(*host, "DEFAULT", skin);
    EXPECT_EQ(host->controlCount(), 5);
    EXPECT_EQ(host->state().buttonCount(), 4);
}

} // namespace
