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
        const QString data = testData("skins/Basic/");
        for (const char* f : {"click.wav", "silent.wav", "text.wav"})
            QFile::copy(data + f, theme + f);
        player = std::make_unique<SoundPlayer>(folders, ini);
    }
    void setSwitches(const QByteArray& text) {
        writeAll(dir.path() + "/theme dir/terminal.skn", "[DEFAULT]\r\n" + text);
    }
};

TEST_F(SoundPlayerTest, OnlyRealWaveFilesReachThePlayer) {
    struct Row {
        const char* name;
        bool played;
    };
    const Row rows[] = {{"click", true}, {"CLICK", true},    {"silent", false},
                        {"text", false}, {"missing", false}, {"", false}};
    for (const Row& r : rows) {
        const int before = player->requestCount();
        player->PlaySkinSound(r.name, false);
        EXPECT_EQ(player->requestCount() - before, r.played ? 1 : 0) << r.name;
    }
    EXPECT_TRUE(sink.shown.empty());
}

TEST_F(SoundPlayerTest, SwitchesAreReadAtEveryCall) {
    setSwitches("Sound=0\r\n");
    player->PlaySkinSound("click", false);
    EXPECT_EQ(player->requestCount(), 0);

    setSwitches("Sound=1\r\nMultiple=True\r\n");
    player->PlaySkinSound("click", false);
    ASSERT_TRUE(player->lastRequest());
    EXPECT_TRUE(player->lastRequest()->overlap);

    setSwitches("Multiple=False\r\n");
    player->PlaySkinSound("click", false);
    EXPECT_FALSE(player->lastRequest()->overlap);
    EXPECT_EQ(player->requestCount(), 2);
}

TEST_F(SoundPlayerTest, WaitingReturnsWithOrWithoutAnAudioDevice) {
    QElapsedTimer t;
    t.start();
    for (int i = 0; i < 3; ++i)
        player->PlaySkinSound("click", true);
    setSwitches("Multiple=True\r\n");
    for (int i = 0; i < 6; ++i)
        player->PlaySkinSound("click", i % 2 == 0);
    EXPECT_LT(t.elapsed(), 15000);
    EXPECT_EQ(player->requestCount(), 9);
}

} // namespace
