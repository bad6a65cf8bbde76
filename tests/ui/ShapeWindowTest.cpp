#include "ui/ShapeWindow.h"

#include "ui/SkinHost.h"

#include <QBitmap>
#include <QRandomGenerator>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

const QRgb kMask = qRgb(255, 0, 255);

QImage filled(int w, int h, QRgb c, QImage::Format f = QImage::Format_RGB32) {
    QImage img(w, h, f);
    img.fill(c);
    return img;
}

// Catches an outline that is off by one at a row's or run's end, reads the
// alpha channel, misreads pictures that are not 32-bit, or masks a colour
// one step from the mask colour. Qt's own bitmap mask is the reference.
TEST(ShapeWindowTest, RegionMatchesQtMaskOnVariedPictures) {
    std::vector<std::pair<const char*, QImage>> cases;
    {
        QImage img = filled(50, 50, qRgb(1, 2, 3));
        QRandomGenerator rng(7);
        for (int y = 0; y < 50; ++y)
            for (int x = 0; x < 50; ++x)
                if (rng.bounded(3) == 0)
                    img.setPixel(x, y, kMask);
        cases.emplace_back("noise", img);
    }
    {
        QImage img = filled(20, 10, qRgba(255, 0, 255, 0), QImage::Format_ARGB32);
        for (int x = 5; x < 15; ++x)
            img.setPixel(x, 4, qRgba(255, 255, 255, 10));
        cases.emplace_back("alpha", img);
    }
    {
        QImage img = filled(30, 20, qRgb(0, 0, 0), QImage::Format_RGB888);
        for (int x = 0; x < 30; x += 2)
            img.setPixelColor(x, 7, QColor(kMask));
        cases.emplace_back("24-bit", img.convertToFormat(QImage::Format_Indexed8));
    }
    cases.emplace_back("all mask", filled(16, 16, kMask));
    cases.emplace_back("no mask", filled(16, 16, qRgb(255, 0, 254)));

    for (const auto& [name, img] : cases) {
        const QImage rgb = img.convertToFormat(QImage::Format_RGB32);
        const QRegion expected(QBitmap::fromImage(rgb.createMaskFromColor(kMask, Qt::MaskInColor)));
        EXPECT_TRUE((regionFromPicture(img, kMask) ^ expected).isEmpty()) << name;
    }
}

// Catches a window that keeps its old size or no outline, and an unreadable
// picture that cuts the window away instead of leaving it rectangular.
TEST(ShapeWindowTest, WindowTakesPictureSizeAndOutline) {
    SkinHost w;
    w.resize(300, 300);
    QImage img = filled(40, 20, qRgb(9, 9, 9));
    img.setPixel(0, 0, kMask);
    ShapeWindow(&w, img, kMask);
    EXPECT_EQ(w.size(), QSize(40, 20));
    EXPECT_FALSE(w.mask().contains(QPoint(0, 0)));
    EXPECT_TRUE(w.mask().contains(QPoint(1, 0)));
    EXPECT_EQ(w.backgroundPicture().size(), QSize(40, 20));

    SkinHost plain;
    plain.resize(100, 50);
    ShapeWindow(&plain, QImage(), kMask);
    EXPECT_TRUE(plain.mask().isEmpty());
    EXPECT_EQ(plain.size(), QSize(100, 50));
}

} // namespace
