#pragma once
// Boxes that a dialog section places by a key of its own ("InputBox",
// "field00", ...): left, top, width, height, then optionally the background
// and text colours as R,G,B each, the font name and its size.
#include <QByteArray>
#include <QSize>

class QWidget;

namespace mirel {

/// Places and colours w from such a value over a window of the given size.
void placeStyledBox(QWidget* w, const QByteArray& value, QSize window);

} // namespace mirel
