#pragma once
// Placement of a control inside a window's inner area. A negative left/top
// counts from the right/bottom edge; a small width/height stretches the
// control to the far edge less its magnitude. Buttons and animations stretch
// only below 0 (so 0 stays 0), every other kind already at 0. Some kinds allow
// a field to be a percentage of the window's width or height, applied before
// the other rules.
#include <QByteArray>
#include <QRect>
#include <QSize>

namespace mirel {

struct ControlLine;

enum class StretchRule {
    BelowOne,  // width/height < 1 stretches (lists, texts, pictures, ...)
    BelowZero, // width/height < 0 stretches (buttons, animations)
};

/// The four placement fields as written, e.g. {"-10", "5", "50%", "0"}.
QRect placeRect(QByteArrayView left, QByteArrayView top, QByteArrayView width,
                QByteArrayView height, QSize window, StretchRule rule, bool allowPercent);

/// Placement of a whole control line, picking the fields and rules for its kind.
/// firstField is where left stands (3 for most kinds; SP "emailbut" has 4).
QRect placeControl(const ControlLine& line, QSize window, int firstField = 3);

} // namespace mirel
