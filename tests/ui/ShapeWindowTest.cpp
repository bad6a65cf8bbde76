#include "ui/ShapeWindow.h"

#include "TestSupport.h"
#include "ui/SkinHost.h"

#include <QBitmap>
#include <QDir>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

const QRgb kMask = qRgb(255, 0, 255);

// Catches an outline that is off by one at a row's or run's end, reads the
// alpha channel, misreads pictures that are not 32-bit, or masks a colour
// one step from the mask colour. Qt's own bitmap mask is the reference; the
// pictures (noise, see-through, paletted, all and no mask) are in tests/data.
TEST(ShapeWindowTest, RegionMatchesQtMaskOnVariedPictures) {
    const QString folder = test::testData("ui/shapes");
    const QStringList names = QDir(folder).entryList(QDir::Files);
    ASSERT_EQ(names.size(), 5);
    for (const QString& name : names) {
        const QImage img(folder + "/" + name);
        ASSERT_FALSE(img.isNull()) << name.toStdString();
        const QImage rgb = img.convertToFormat(QImage::Format_RGB32);
        const QRegion expected(QBitmap::fromImage(rgb.createMaskFromColor(kMask, Qt::MaskInColor)));
        EXPECT_TRUE((regionFromPicture(img, kMask) ^ expected).isEmpty()) << name.toStdString();
    }
}

// Catches a window that keeps its old size or no outline, and an unreadable
// picture that cuts the window away instead of leaving it rectangular.
TEST(ShapeWindowTest, WindowTakesPictureSizeAndOutline) {
    SkinHost w;
    w.resize(300, 300);
    ShapeWindow(&w, QImage(test::testData("ui/shapes/indexed.bmp")), kMask); // 30 x 20
    EXPECT_EQ(w.size(), QSize(30, 20));
    EXPECT_FALSE(w.mask().contains(QPoint(0, 7)));
    EXPECT_TRUE(w.mask().contains(QPoint(1, 7)));
    EXPECT_EQ(w.backgroundPicture().size(), QSize(30, 20));

    SkinHost plain;
    plain.resize(100, 50);
    ShapeWindow(&plain, QImage(), kMask);
    EXPECT_TRUE(plain.mask().isEmpty());
    EXPECT_EQ(plain.size(), QSize(100, 50));
}

} // namespace
