#include "skin/SkinSound.h"

#include "IniFixture.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class SkinSoundTest : public IniFixture {
protected:
    // The theme folder has a blank in its name: paths are used as they are.
    QString theme = dir.path() + QStringLiteral("/My Theme/");

    void SetUp() override {
        QDir().mkpath(theme);
        writeAll(theme + "Click.WAV", QByteArray("RIFF\x04\0\0\0WAVE", 12));
        writeAll(theme + "empty.wav", {});
    }
};

TEST_F(SkinSoundTest, NameToFile) {
    // A theme sound gets ".wav" and is found whatever the case on disk.
    EXPECT_EQ(SkinSound::soundPath("click", theme), theme + "Click.WAV");
    // A drive path is read from the root of this system.
    const QString full = theme + "empty.wav";
    QString windowsStyle = "C:" + full;
    windowsStyle.replace('/', '\\');
    EXPECT_EQ(SkinSound::soundPath(windowsStyle.toLatin1(), theme), full);
}

// Catches the wait and overlap wishes lost on the way to the player, a blank
// name, an empty file or a folder taken for a sound. (Switches and fake
// files are checked at the player.)
TEST_F(SkinSoundTest, PlanCarriesTheWishesAndSkipsWhatIsNoFile) {
    const SoundSwitches on{true, false}, overlap{true, true};
    const auto planned = SkinSound::plan("CLICK", true, overlap, theme);
    ASSERT_TRUE(planned.has_value());
    EXPECT_EQ(planned->path, theme + "Click.WAV");
    EXPECT_TRUE(planned->overlap);
    EXPECT_TRUE(planned->wait);
    EXPECT_FALSE(SkinSound::plan("  ", false, on, theme));
    EXPECT_FALSE(SkinSound::plan("empty", false, on, theme));
    QDir().mkpath(theme + "dir.wav");
    EXPECT_FALSE(SkinSound::plan("dir", false, on, theme));
}

} // namespace
