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

// Catches a crash, a hang or frames without delays on empty, truncated or
// damaged files, a still picture not shown as one frame (the theme's broken
// and cut-off GIFs are laid out in the layout test); frames or delays read
// wrongly from the file, a tick that does not take the next frame's delay or
// wrap, a pause that is ignored, and a zero delay that keeps it running.
TEST(AnimatedPictureTest, BrokenFilesGiveWhatTheyHoldAndTicksFollowTheDelays) {
    EXPECT_TRUE(readGifFrames({}).pictures.isEmpty());
    EXPECT_TRUE(readGifFrames("GIF89a").pictures.isEmpty());
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

    // Made with ImageMagick: three 8x8 frames (red first, blue last) at 10, 20, 5 hundredths.
    GifFrames f = readGifFrames(gif("spin.gif"));
    ASSERT_EQ(f.pictures.size(), 3);
    EXPECT_EQ(f.pictures[0].toImage().pixelColor(4, 4), QColor(Qt::red));
    EXPECT_EQ(f.pictures[2].toImage().pixelColor(4, 4), QColor(Qt::blue));
    AnimatedPicture a(f);
    a.start();
    bool closing = false;
    a.setPausedWhen([&] { return closing; });
    for (const auto& [frame, interval] : {std::pair{1, 200}, {2, 50}, {0, 100}}) {
        a.AnimationTick();
        EXPECT_EQ(std::pair(a.currentFrame(), a.interval()), std::pair(frame, interval));
    }
    closing = true;
    a.AnimationTick();
    EXPECT_EQ(a.currentFrame(), 0);

    f.delays[1] = 0;
    AnimatedPicture stops(f);
    stops.start();
    EXPECT_TRUE(stops.running());
    stops.AnimationTick();
    EXPECT_EQ(stops.currentFrame(), 1);
    EXPECT_FALSE(stops.running());
    f.delays[0] = 0;
    AnimatedPicture still(f);
    still.start();
    EXPECT_FALSE(still.running());
}

} // namespace
