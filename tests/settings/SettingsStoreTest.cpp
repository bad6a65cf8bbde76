#include "platform/SettingsStore.h"
#include "settings/Folders.h"

#include "TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

TEST(SettingsStore, LivesUnderXdgConfigHomeAndIgnoresCase) {
    TempDir dir;
    qputenv("XDG_CONFIG_HOME", dir.path().toUtf8());
    SettingsStore store = SettingsStore::forCurrentUser();
    EXPECT_EQ(store.fileFor(kFamilyApp), dir.path() + "/TORVEX Terminal/settings.ini");

    ASSERT_TRUE(store.SaveSetting(kFamilyApp, "Default", "ProgramDir", "/opt/x"));
    ASSERT_TRUE(store.SaveSetting(kFamilyApp, "DEFAULT", "Password", "secret"));
    EXPECT_EQ(readAll(store.fileFor(kFamilyApp)),
              QByteArray("[Default]\r\nProgramDir=/opt/x\r\nPassword=secret\r\n"));
    EXPECT_EQ(store.GetSetting(kFamilyApp, "default", "PROGRAMDIR"), "/opt/x");
    EXPECT_EQ(store.GetSetting(kFamilyApp, "General", "Running", "False"), "False");
    EXPECT_EQ(store.GetSetting("Other App", "Default", "ProgramDir", "d"), "d");

    EXPECT_TRUE(store.DeleteSetting(kFamilyApp, "Default", "Password"));
    EXPECT_EQ(store.GetSetting(kFamilyApp, "Default", "Password", "none"), "none");
    EXPECT_FALSE(store.DeleteSetting(kFamilyApp, "Nope"));
    qunsetenv("XDG_CONFIG_HOME");
}

TEST(Folders, DefaultsWhenTheStoreIsEmpty) {
    TempDir dir;
    qputenv("XDG_DATA_HOME", dir.file("data").toUtf8());
    SettingsStore store(dir.file("config"));
    const Folders f = Folders::fromStore(store);
    EXPECT_EQ(f.ProgramDir, dir.file("data/mirel"));
    EXPECT_TRUE(QFileInfo(f.ProgramDir).isDir());
    EXPECT_EQ(f.ThemeDir, "\\themes\\Default\\");
    EXPECT_EQ(f.themeFile("terminal.skn"), dir.file("data/mirel/themes/Default/terminal.skn"));
    qunsetenv("XDG_DATA_HOME");
}

TEST(Folders, ProgramDirAndThemeDirFromTheStore) {
    TempDir dir;
    SettingsStore store(dir.file("config"));
    QDir(dir.path()).mkpath("prog/Themes/Dark");
    store.SaveSetting(kFamilyApp, "Default", "ProgramDir", dir.file("prog/").toUtf8());
    store.SaveSetting(kFamilyApp, "Default", "ThemeDir", "\\themes\\dark\\");
    Folders f = Folders::fromStore(store);
    EXPECT_EQ(f.ProgramDir, dir.file("prog"));
    EXPECT_EQ(f.themeFile("terminal.skn"), dir.file("prog/Themes/Dark/terminal.skn"));
    EXPECT_EQ(f.path("\\Mirel\\Notes"), dir.file("prog/Mirel/Notes"));
    f.SkinName = "Mirel1024";
    EXPECT_EQ(f.skinOverrideFile(), dir.file("prog/Themes/Dark/Mirel1024.ini"));

    // Present but empty: theme files sit right behind ProgramDir, no separator.
    store.SaveSetting(kFamilyApp, "Default", "ThemeDir", "");
    f = Folders::fromStore(store);
    EXPECT_EQ(f.ThemeDir, "");
    EXPECT_EQ(f.themeFile("terminal.skn"), dir.file("progterminal.skn"));
}

} // namespace
