#include "ui/ThemePictures.h"

#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

QColor centre(const QPixmap& p) {
    return p.toImage().pixelColor(p.width() / 2, p.height() / 2);
}

// Catches a cache that outlives its file: a theme author who saves a
// picture anew (other size or colour), or deletes it, must see that on the
// next layout, not the picture decoded before.
TEST(ThemePicturesTest, FollowsTheFileOnDisk) {
    QTemporaryDir dir;
    const QString path = dir.path() + QStringLiteral("/b.bmp");
    QImage pic(8, 8, QImage::Format_RGB32);
    pic.fill(Qt::red);
    ASSERT_TRUE(pic.save(path));
    EXPECT_EQ(centre(ThemePictures::get(path)), QColor(Qt::red));

    pic = QImage(12, 8, QImage::Format_RGB32);
    pic.fill(Qt::blue);
    ASSERT_TRUE(pic.save(path));
    const QPixmap again = ThemePictures::get(path);
    EXPECT_EQ(again.size(), QSize(12, 8));
    EXPECT_EQ(centre(again), QColor(Qt::blue));

    QFile::remove(path);
    EXPECT_TRUE(ThemePictures::get(path).isNull());
    EXPECT_TRUE(ThemePictures::get(dir.path()).isNull()); // a folder is no picture
}

} // namespace
