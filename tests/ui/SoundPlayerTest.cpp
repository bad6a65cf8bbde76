#include "ui/SoundPlayer.h"

#include "IniFixture.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class SoundPlayerTest : public IniFixture {
protected:
    Folders folders;
    std::unique_ptr<SoundPlayer> player;

    void SetUp() override {
        folders.ProgramDir = dir.path();
        folders.ThemeDir = "\\theme dir\\";
        const QString theme = dir.path() + "/theme dir/";
        QDir().mkpath(theme);
        for (const char* f : {"click.wav", "silent.wav", "text.wav"})
            QFile::copy(testData("skins/Basic/") + f, theme + f);
        player = std::make_unique<SoundPlayer>(folders, ini);
    }
    void setSwitches(const QByteArray& text) {
        writeAll(dir.path() + "/theme dir/terminal.skn", "[DEFAULT]\r\n" + text);
    }
    int plays(const char* name, bool wait = false) {
        const int before = player->requestCount();
        player->PlaySkinSound(name, wait);
        return player->requestCount() - before;
    }
};

// Catches a file that is no wave (a text, a wave without samples) or a
// missing one handed to the player or shown as a message, a name matched
// only in its own case, switches read once and kept (a theme edited while
// the program runs is ignored), the overlap wish lost, and a wait that hangs
// when no audio device answers.
TEST_F(SoundPlayerTest, OnlyRealWavesPlaySwitchesAreReadAtEveryCallAndWaitingReturns) {
    for (const char* name : {"click", "CLICK"})
        EXPECT_EQ(plays(name), 1) << name;
    for (const char* name : {"silent", "text", "missing", ""})
        EXPECT_EQ(plays(name), 0) << name;
    EXPECT_TRUE(sink.shown.empty());

    setSwitches("Sound=0\r\n");
    EXPECT_EQ(plays("click"), 0);
    setSwitches("Sound=1\r\nMultiple=True\r\n");
    EXPECT_EQ(plays("click"), 1);
    EXPECT_TRUE(player->lastRequest()->overlap);
    setSwitches("Multiple=False\r\n");
    EXPECT_EQ(plays("click"), 1);
    EXPECT_FALSE(player->lastRequest()->overlap);

    QElapsedTimer t;
    t.start();
    for (int i = 0; i < 6; ++i) {
        setSwitches(i < 3 ? "" : "Multiple=True\r\n");
        EXPECT_EQ(plays("click", i % 2 == 0), 1);
    }
    EXPECT_LT(t.elapsed(), 15000);
}

} // namespace
