#pragma once
#include <QImage>
#include <QRegion>

class QWidget;

namespace mirel {

/// The visible outline of a picture: one rectangle per horizontal run of
/// pixels whose colour is not the mask colour (alpha ignored).
QRegion regionFromPicture(const QImage& picture, QRgb maskColour);

/// Gives a window its background picture, its size and the outline of the
/// picture; a null picture leaves the window rectangular.
void ShapeWindow(QWidget* window, const QImage& picture, QRgb maskColour);

} // namespace mirel
