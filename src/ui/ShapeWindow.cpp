#include "ui/ShapeWindow.h"

#include "ui/SkinHost.h"

#include <QPixmap>
#include <QWidget>

namespace mirel {

QRegion regionFromPicture(const QImage& picture, QRgb maskColour) {
    if (picture.isNull())
        return {};
    const QImage img = picture.format() == QImage::Format_RGB32
                           ? picture
                           : picture.convertToFormat(QImage::Format_RGB32);
    const QRgb mask = maskColour & 0x00ffffff;
    // Rows with exactly the same runs as the row above extend that band
    // instead of adding rectangles, so the list stays a valid, compact band
    // structure for QRegion::setRects.
    QList<QRect> rects;
    QList<QRect> row;
    qsizetype bandStart = 0;
    const int w = img.width();
    for (int y = 0; y < img.height(); ++y) {
        const QRgb* px = reinterpret_cast<const QRgb*>(img.constScanLine(y));
        row.clear();
        int x = 0;
        while (x < w) {
            while (x < w && (px[x] & 0x00ffffff) == mask)
                ++x;
            const int x1 = x;
            while (x < w && (px[x] & 0x00ffffff) != mask)
                ++x;
            if (x > x1)
                row.append(QRect(x1, y, x - x1, 1));
        }
        const qsizetype bandSize = rects.size() - bandStart;
        bool same = !row.isEmpty() && bandSize == row.size() && rects.last().bottom() == y - 1;
        for (qsizetype i = 0; same && i < row.size(); ++i)
            same = rects[bandStart + i].left() == row[i].left() &&
                   rects[bandStart + i].width() == row[i].width();
        if (same) {
            for (qsizetype i = bandStart; i < rects.size(); ++i)
                rects[i].setBottom(y);
        } else if (!row.isEmpty()) {
            bandStart = rects.size();
            rects.append(row);
        }
    }
    // Uniting rectangle by rectangle would rebuild the region each time;
    // setRects takes the y-x sorted band list as it is.
    QRegion region;
    region.setRects(rects.constData(), int(rects.size()));
    return region;
}

void ShapeWindow(QWidget* window, const QImage& picture, QRgb maskColour) {
    if (!window || picture.isNull())
        return;
    if (auto* host = qobject_cast<SkinHost*>(window))
        host->setBackgroundPicture(QPixmap::fromImage(picture));
    window->setFixedSize(picture.size());
    window->setMask(regionFromPicture(picture, maskColour));
    window->update();
}

} // namespace mirel
