#include "skin/Placement.h"

#include "settings/CommaList.h"
#include "skin/ControlLine.h"

#include <QtGlobal>

namespace mirel {
namespace {

// Skin numbers are unchecked; keep every coordinate far inside int range so
// no arithmetic below can overflow, whatever the file says.
constexpr long long kLimit = 1 << 20;

long long clampCoord(long long v) {
    return qBound(-kLimit, v, kLimit);
}

long long readField(QByteArrayView field, int whole, bool allowPercent) {
    const long long v = clampCoord(leadingNumber(field));
    if (allowPercent && field.trimmed().endsWith('%'))
        return clampCoord(v * whole / 100);
    return v;
}

} // namespace

QRect placeRect(QByteArrayView left, QByteArrayView top, QByteArrayView width,
                QByteArrayView height, QSize window, StretchRule rule, bool allowPercent) {
    const long long ww = window.width(), wh = window.height();
    long long l = readField(left, int(ww), allowPercent);
    long long t = readField(top, int(wh), allowPercent);
    long long w = readField(width, int(ww), allowPercent);
    long long h = readField(height, int(wh), allowPercent);
    if (l < 0)
        l += ww;
    if (t < 0)
        t += wh;
    const long long stretchBelow = rule == StretchRule::BelowOne ? 1 : 0;
    if (w < stretchBelow)
        w = ww + w - l;
    if (h < stretchBelow)
        h = wh + h - t;
    // A stretch past the far edge leaves nothing to show, not a negative size.
    return QRect(int(clampCoord(l)), int(clampCoord(t)), int(qBound(0LL, w, kLimit)),
                 int(qBound(0LL, h, kLimit)));
}

QRect placeControl(const ControlLine& line, QSize window, int firstField) {
    bool percent = false;
    StretchRule rule = StretchRule::BelowOne;
    switch (line.kindCode) {
    case ControlKind::Button:
    case ControlKind::Animation:
        rule = StretchRule::BelowZero;
        break;
    case ControlKind::Picture:
    case ControlKind::TextBox:
    case ControlKind::MultiLine:
    case ControlKind::Label:
    case ControlKind::Special:
    case ControlKind::ModeButton:
    case ControlKind::CheckButton:
        percent = true;
        break;
    default:
        break;
    }
    return placeRect(line.field(firstField), line.field(firstField + 1), line.field(firstField + 2),
                     line.field(firstField + 3), window, rule, percent);
}

} // namespace mirel
