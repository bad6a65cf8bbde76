#include "ui/AnimatedPicture.h"

#include "TestSupport.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

QByteArray gif(const char* name) {
    return readAll(testData(QStringLiteral("skins/Basic/") + name));
}

TEST(AnimatedPictureTest, FramesAndDelaysFromTheFile) {
    // Made with ImageMagick: three 8x8 frames at 10, 20 and 5 hundredths.
    const GifFrames f = readGifFrames(gif("spin.gif"));
    ASSERT_EQ(f.pictures.size(), 3);
    EXPECT_EQ(f.delays, (QList<int>{100, 200, 50}));
    EXPECT_EQ(f.pictures[0].toImage().pixelColor(4, 4), QColor(Qt::red));
    EXPECT_EQ(f.pictures[2].toImage().pixelColor(4, 4), QColor(Qt::blue));
}

TEST(AnimatedPictureTest, BrokenFilesGiveWhatTheyHold) {
    EXPECT_TRUE(readGifFrames(gif("broken.gif")).pictures.isEmpty());
    EXPECT_TRUE(readGifFrames({}).pictures.isEmpty());
    EXPECT_TRUE(readGifFrames("GIF89a").pictures.isEmpty());
    EXPECT_LE(readGifFrames(gif("cut.gif")).pictures.size(), 1);
    // A still picture where an animation was expected shows as one frame.
    EXPECT_EQ(readGifFrames(gif("button.bmp")).pictures.size(), 1);
    // Damaged copies of a good file never crash or hang.
    const QByteArray good = gif("spin.gif");
    QRandomGenerator rng(42);
    for (int i = 0; i < 300; ++i) {
        QByteArray bad = good;
        for (int k = 0; k < 4; ++k)
            bad[rng.bounded(int(bad.size()))] = char(rng.bounded(256));
        if (i % 3 == 0)
            bad.truncate(rng.bounded(int(bad.size())));
        const GifFrames f = readGifFrames(bad);
        EXPECT_EQ(f.pictures.size(), f.delays.size());
    }
}

TEST(AnimatedPictureTest, TickAdvancesAtEachFramesDelay) {
    AnimatedPicture a(readGifFrames(gif("spin.gif")));
    a.start();
    EXPECT_EQ(a.currentFrame(), 0);
    EXPECT_EQ(a.interval(), 100);
    EXPECT_TRUE(a.running());
    a.AnimationTick();
    EXPECT_EQ(a.currentFrame(), 1);
    EXPECT_EQ(a.interval(), 200);
    a.AnimationTick();
    a.AnimationTick();
    EXPECT_EQ(a.currentFrame(), 0); // after the last comes the first
    EXPECT_EQ(a.interval(), 100);

    bool closing = true;
    a.setPausedWhen([&] { return closing; });
    a.AnimationTick();
    EXPECT_EQ(a.currentFrame(), 0);
    closing = false;
    a.AnimationTick();
    EXPECT_EQ(a.currentFrame(), 1);
}

TEST(AnimatedPictureTest, ZeroDelayStopsOnThatFrame) {
    GifFrames f = readGifFrames(gif("spin.gif"));
    f.delays[1] = 0;
    AnimatedPicture a(f);
    a.start();
    a.AnimationTick();
    EXPECT_EQ(a.currentFrame(), 1);
    EXPECT_FALSE(a.running());

    f.delays[0] = 0;
    AnimatedPicture still(f);
    still.start();
    EXPECT_FALSE(still.running());
    EXPECT_EQ(still.currentFrame(), 0);
}

} // namespace
