#include "ui/WindowLook.h"

#include <QWidget>

namespace mirel {
namespace {

struct Look {
    bool set = false;
    QColor back;
    QFont font;
};

Look& look() {
    static Look l;
    return l;
}

} // namespace

void WindowLook::set(const QColor& back, const QFont& font) {
    look() = {true, back, font};
}

void WindowLook::apply(QWidget* dialog) {
    const Look& l = look();
    if (!dialog || !l.set)
        return;
    const bool dark = l.back.lightness() < 128;
    const QColor fore = dark ? QColor(216, 221, 232) : QColor(20, 23, 32);
    const QColor field = dark ? l.back.lighter(135) : l.back.darker(106);
    const QColor button = dark ? l.back.lighter(170) : l.back.darker(112);
    const QColor edge = dark ? l.back.lighter(260) : l.back.darker(135);
    dialog->setFont(l.font);
    dialog->setStyleSheet(
        QStringLiteral("QDialog { background: %1; } QLabel { color: %2; }"
                       "QLineEdit { background: %3; color: %2; border: 1px solid %5;"
                       " padding: 3px; selection-background-color: %5; }"
                       "QPushButton { background: %4; color: %2; border: 1px solid %5;"
                       " border-radius: 5px; padding: 5px 16px; min-width: 64px; }"
                       "QPushButton:focus { border: 1px solid %2; }"
                       "QPushButton:pressed { background: %5; }")
            .arg(l.back.name(), fore.name(), field.name(), button.name(), edge.name()));
}

} // namespace mirel
