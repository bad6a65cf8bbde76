#pragma once
// The colours and font of the theme for the windows the toolkit draws
// itself (message boxes, the name prompt), so they do not stand out as grey
// system boxes on a themed desktop. Set once the theme is read.
#include <QColor>
#include <QFont>

class QWidget;

namespace mirel {

/// The theme's look, handed to plain dialogs.
class WindowLook {
public:
    /// back: the theme's window colour; the text and button colours are made
    /// to read on it.
    static void set(const QColor& back, const QFont& font);
    /// Gives a dialog the look (nothing before set was called).
    static void apply(QWidget* dialog);
};

} // namespace mirel
