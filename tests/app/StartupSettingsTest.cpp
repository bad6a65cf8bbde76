#include "IniFixture.h"
#include "app/PasswordGate.h"
#include "app/SkinChoice.h"
#include "app/ThemeSwitches.h"
#include "app/WindowPlacement.h"
#include "platform/SettingsStore.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"

#include <QDir>
#include <gtest/gtest.h>
#include <tuple>

using namespace mirel;

namespace {

class Startup : public test::IniFixture {
protected:
    Folders folders{dir.path(), QStringLiteral("\\Theme\\")};

    void SetUp() override { QDir().mkpath(dir.file("theme")); }
    void theme(const QString& name, const QByteArray& text) {
        test::writeAll(dir.file("theme/" + name), text);
    }
};

} // namespace

// Catches a published rectangle taken while the shell is not running, a
// missing edge not taken from the work area, and a window of no area.
TEST(WindowPlacement, PublishedRectangleOnlyWhileTheShellRuns) {
    const char* edges[] = {"Left", "Top", "Right", "Bottom"};
    for (const auto& r : test::readTable("tables/window-rect.txt")) {
        test::TempDir dir;
        SettingsStore store(dir.path());
        if (!r[0].isEmpty())
            store.SaveSetting(kFamilyApp, "General", "Running", r[0]);
        const QList<QByteArray> values = r[1].split(' ');
        for (int i = 0; i < 4; ++i)
            if (values[i] != "-")
                store.SaveSetting(kFamilyApp, "Screen", edges[i], values[i]);
        const QRect w = mainWindowRect(store, QRect(0, 24, 1280, 776));
        EXPECT_EQ(QString("%1 %2 %3 %4").arg(w.x()).arg(w.y()).arg(w.width()).arg(w.height()),
                  QString::fromLatin1(r[2]))
            << r[0].data() << " " << r[1].data();
    }
}

// Catches a sized skin chosen without its own background, or for another
// screen width.
TEST_F(Startup, SkinChoiceSizedOnlyWithABackground) {
    theme("mirel1024.skn", "[DEFAULT]\r\n01=B,x.bmp,0,0,1,1,,,,QUIT\r\n");
    EXPECT_EQ(chooseSkinName(ini, folders, 1024), "Mirel");
    theme("mirel1024.skn", "[default]\r\nbackground=0,0,0\r\n");
    EXPECT_EQ(chooseSkinName(ini, folders, 1024), "Mirel1024");
    EXPECT_EQ(chooseSkinName(ini, folders, 800), "Mirel");
}

// Catches Debug read again at shut-down (only the animation is), a delay
// outside its bounds, and an unreadable value replacing the one before.
TEST_F(Startup, ThemeSwitchesDebugAtStartOnlyAndDelayWithinBounds) {
    const QString skn = dir.file("theme/terminal.skn");
    ThemeSwitches s;
    auto state = [&] { return std::tuple(s.Animated, s.AnimDelay, s.DebugOn); };
    theme("terminal.skn", "[DEFAULT]\r\nAnimated=True\r\nAnimDelay=25ms\r\nDebug=1\r\n");
    s.read(ini, skn);
    EXPECT_EQ(state(), std::tuple(true, 25, true));
    theme("terminal.skn", "[DEFAULT]\r\nAnimated=perhaps\r\nAnimDelay=99999999\r\nDebug=0\r\n");
    s.readAnimation(ini, skn);
    EXPECT_EQ(state(), std::tuple(true, ThemeSwitches::kMaxAnimDelay, true));
    theme("terminal.skn", "[DEFAULT]\r\nAnimDelay=-5\r\n");
    s.read(ini, skn);
    EXPECT_EQ(s.AnimDelay, 0);
}

// Catches a protected button opened without the password: the flag is the
// ninth field and the theme's override file wins. (A flag of "True" or "1"
// and a screen's own section are the main window test's.)
TEST_F(Startup, PasswordFlagIsTheNinthFieldOverrideFirst) {
    const QString skn = dir.file("theme/Mirel.skn");
    const QString over = dir.file("theme/Mirel.ini");
    theme("Mirel.skn", "[DEFAULT]\r\n"
                       "02=B,b.bmp,0,0,10,10,hov,clk,False,OPEN\r\n"
                       "03=B,c.bmp,0,0,10,10,hov,clk\r\n");
    theme("Mirel.ini", "[DEFAULT]\r\n02=B,b.bmp,0,0,10,10,hov,clk,-1,OPEN\r\n");

    EXPECT_TRUE(PasswordGate::isProtected(ini, "DEFAULT", 2, skn, over)) << "override wins";
    EXPECT_FALSE(PasswordGate::isProtected(ini, "DEFAULT", 3, skn, over)) << "no ninth field";
    EXPECT_FALSE(PasswordGate::isProtected(ini, "DEFAULT", 9, skn, over)) << "no such line";
}
