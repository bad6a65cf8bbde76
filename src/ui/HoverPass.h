#pragma once
#include <QPoint>

class QWidget;

namespace mirel {

class SkinHost;
class SoundPlayer;

/// One hover pass with the pointer where the system says it is.
void HoverPass(SkinHost& host);
/// One hover pass for a pointer at globalPos over the widget under (may be null).
void HoverPass(SkinHost& host, QPoint globalPos, QWidget* under);

} // namespace mirel
