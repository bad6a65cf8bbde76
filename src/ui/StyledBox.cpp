#include "ui/StyledBox.h"

#include "platform/Cp1252.h"
#include "settings/CommaList.h"
#include "skin/Placement.h"

#include <QWidget>

namespace mirel {

void placeStyledBox(QWidget* w, const QByteArray& value, QSize window) {
    const QList<QByteArray> f = splitCommaList(value);
    auto field = [&f](int i) { return i < f.size() ? f[i] : QByteArray(); };
    w->setGeometry(
        placeRect(field(0), field(1), field(2), field(3), window, StretchRule::BelowOne, false));
    QPalette pal = w->palette();
    if (f.size() >= 7) {
        const Rgb b = parseRgb(f.mid(4, 3).join(','));
        pal.setColor(QPalette::Base, QColor(b.r, b.g, b.b));
        pal.setColor(QPalette::Button, QColor(b.r, b.g, b.b));
    }
    if (f.size() >= 10) {
        const Rgb t = parseRgb(f.mid(7, 3).join(','));
        for (QPalette::ColorRole role :
             {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
            pal.setColor(role, QColor(t.r, t.g, t.b));
    }
    w->setPalette(pal);
    QFont font = w->font();
    if (!field(10).trimmed().isEmpty())
        font.setFamily(Cp1252::toUnicode(field(10).trimmed()));
    if (const long pt = leadingNumber(field(11)); pt > 0 && pt < 500)
        font.setPointSize(int(pt));
    w->setFont(font);
}

} // namespace mirel
