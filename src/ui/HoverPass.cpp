#include "ui/HoverPass.h"

#include "ui/SkinButton.h"
#include "ui/SkinHost.h"
#include "ui/SoundPlayer.h"

#include <QApplication>
#include <QCursor>

namespace mirel {

void HoverPass(SkinHost& host) {
    const QPoint pos = QCursor::pos();
    HoverPass(host, pos, QApplication::widgetAt(pos));
}

void HoverPass(SkinHost& host, QPoint globalPos, QWidget* under) {
    SkinState& state = host.state();
    if (state.closing)
        return;
    // All leaving happens before any entering, so moving straight from one
    // button onto the next unlights the first and lights the second in the
    // same pass, and the new hover sound is the one left playing.
    SkinButton* entered = nullptr;
    for (int i = 1; i <= state.buttonCount(); ++i) {
        SkinButton* b = host.button(i);
        if (!b)
            continue;
        const bool over =
            under == b && b->isVisible() && b->rect().contains(b->mapFromGlobal(globalPos));
        if (over && !b->hovered)
            entered = b;
        else if (!over && b->hovered) {
            b->hovered = false;
            if (i != state.selectedPriorityButton)
                b->setLit(false);
        }
    }
    if (entered) {
        entered->hovered = true;
        if (SoundPlayer* sounds = host.soundPlayer())
            sounds->PlaySkinSound(state.button(entered->index()).hoverSound, false);
        if (entered->index() != state.selectedPriorityButton)
            entered->setLit(true);
    }
}

} // namespace mirel
