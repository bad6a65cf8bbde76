#include "TestSupport.h"
#include "app/PasswordGate.h"
#include "app/SkinChoice.h"
#include "app/ThemeSwitches.h"
#include "app/WindowPlacement.h"
#include "platform/SettingsStore.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

struct Env {
    test::TempDir dir;
    SettingsStore store{dir.file("config")};
    test::RecordingMessageSink sink;
    IniHelpers ini{sink, store};
    Folders folders;

    Env() {
        folders.ProgramDir = dir.path();
        folders.ThemeDir = QStringLiteral("\\Theme\\");
        QDir().mkpath(dir.file("theme"));
    }
    void theme(const QString& name, const QByteArray& text) {
        test::writeAll(dir.file("theme/" + name), text);
    }
    void shell(const char* section, const char* key, const QByteArray& v) {
        store.SaveSetting(kFamilyApp, section, key, v);
    }
};

} // namespace

TEST(WindowPlacement, PublishedRectangleOnlyWhileTheShellRuns) {
    const QRect work(0, 24, 1280, 776);
    Env e;
    EXPECT_EQ(mainWindowRect(e.store, work), work);

    e.shell("Screen", "Left", "100");
    e.shell("Screen", "Top", "50");
    e.shell("Screen", "Right", "900");
    e.shell("Screen", "Bottom", "650");
    EXPECT_EQ(mainWindowRect(e.store, work), work) << "Running absent";
    e.shell("General", "Running", "False");
    EXPECT_EQ(mainWindowRect(e.store, work), work);

    e.shell("General", "Running", "True");
    EXPECT_EQ(mainWindowRect(e.store, work), QRect(100, 50, 800, 600));

    // A missing edge is the work area's.
    e.store.DeleteSetting(kFamilyApp, "Screen", "Right");
    e.store.DeleteSetting(kFamilyApp, "Screen", "Top");
    EXPECT_EQ(mainWindowRect(e.store, work), QRect(100, 24, 1180, 626));

    // A rectangle with no area cannot hold the window.
    e.shell("Screen", "Right", "100");
    EXPECT_EQ(mainWindowRect(e.store, work), work);
}

TEST(SkinChoice, SizedSkinOnlyWithABackground) {
    Env e;
    EXPECT_EQ(chooseSkinName(e.ini, e.folders, 1024), "Mirel");
    e.theme("mirel1024.skn", "[DEFAULT]\r\n01=B,x.bmp,0,0,1,1,,,,QUIT\r\n");
    EXPECT_EQ(chooseSkinName(e.ini, e.folders, 1024), "Mirel");
    e.theme("mirel1024.skn", "[default]\r\nbackground=0,0,0\r\n");
    EXPECT_EQ(chooseSkinName(e.ini, e.folders, 1024), "Mirel1024");
    EXPECT_EQ(chooseSkinName(e.ini, e.folders, 800), "Mirel");
}

TEST(ThemeSwitches, PresentKeysOnly) {
    Env e;
    const QString skn = e.dir.file("theme/terminal.skn");
    ThemeSwitches s;
    s.read(e.ini, skn);
    EXPECT_FALSE(s.Animated);
    EXPECT_EQ(s.AnimDelay, 0);
    EXPECT_FALSE(s.DebugOn);

    e.theme("terminal.skn", "[DEFAULT]\r\nAnimated=True\r\nAnimDelay=25ms\r\nDebug=1\r\n");
    s.read(e.ini, skn);
    EXPECT_TRUE(s.Animated);
    EXPECT_EQ(s.AnimDelay, 25);
    EXPECT_TRUE(s.DebugOn);

    // Shut-down re-reads only the animation; unreadable values keep the old ones.
    e.theme("terminal.skn", "[DEFAULT]\r\nAnimated=perhaps\r\nAnimDelay=99999999\r\nDebug=0\r\n");
    s.readAnimation(e.ini, skn);
    EXPECT_TRUE(s.Animated);
    EXPECT_EQ(s.AnimDelay, ThemeSwitches::kMaxAnimDelay);
    EXPECT_TRUE(s.DebugOn);
    e.theme("terminal.skn", "[DEFAULT]\r\nAnimated=0\r\nAnimDelay=-5\r\n");
    s.read(e.ini, skn);
    EXPECT_FALSE(s.Animated);
    EXPECT_EQ(s.AnimDelay, 0);
}

TEST(PasswordGate, FlagIsTheNinthFieldOverrideFirst) {
    Env e;
    const QString skn = e.dir.file("theme/Mirel.skn");
    const QString ini = e.dir.file("theme/Mirel.ini");
    e.theme("Mirel.skn", "[DEFAULT]\r\n"
                         "01=B,a.bmp,0,0,10,10,hov,clk,True,SECRET\r\n"
                         "02=B,b.bmp,0,0,10,10,hov,clk,False,OPEN\r\n"
                         "03=B,c.bmp,0,0,10,10,hov,clk\r\n"
                         "[Notes]\r\n01=B,d.bmp,0,0,10,10,,,1,NOTEADD\r\n");
    e.theme("Mirel.ini", "[DEFAULT]\r\n02=B,b.bmp,0,0,10,10,hov,clk,-1,OPEN\r\n");

    EXPECT_TRUE(PasswordGate::isProtected(e.ini, "DEFAULT", 1, skn, ini));
    EXPECT_TRUE(PasswordGate::isProtected(e.ini, "DEFAULT", 2, skn, ini)) << "override wins";
    EXPECT_FALSE(PasswordGate::isProtected(e.ini, "DEFAULT", 3, skn, ini)) << "no ninth field";
    EXPECT_FALSE(PasswordGate::isProtected(e.ini, "DEFAULT", 9, skn, ini)) << "no such line";
    EXPECT_TRUE(PasswordGate::isProtected(e.ini, "Notes", 1, skn, ini));
}
