// The settings layer: the profile-style INI helpers, the shared store and
// the folders read from it, and the debug log.
#include "settings/IniHelpers.h"

#include "IniFixture.h"
#include "platform/RuntimeError.h"
#include "settings/DebugLog.h"
#include "settings/Folders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

using IniHelpersTest = IniFixture;

// Catches the "NotFound" answer (bare, quoted or padded) read as a value, a
// value not cut at a NUL or at the buffer size, a failed read that keeps the
// previous value, a missing file or key reported to the user as an error, and
// a file that cannot be read taken for a missing one.
TEST_F(IniHelpersTest, ReadIniKeyAnswersAsTheProfileBuffer) {
    const QString f = dir.file("t.ini");
    writeAll(f, "[S]\r\na=1\r\nempty=\r\nnf=NotFound\r\nnfq=\"NotFound\"\r\nnf2= NotFound \r\n" +
                    QByteArray("nul=ab\0cd\r\n", 11) + "big=" + QByteArray(40000, 'x') + "\r\n");
    const std::pair<const char*, std::optional<QByteArray>> rows[] = {
        {"a", "1"},
        {"empty", ""},
        {"nul", "ab"},
        {"nf", std::nullopt},
        {"nfq", std::nullopt},
        {"nf2", std::nullopt},
        {"missing", std::nullopt},
        {"big", QByteArray(31999, 'x')}};
    for (const auto& [key, expected] : rows) {
        ini.IniValue = "stale";
        EXPECT_EQ(ini.ReadIniKey("S", key, f), expected.has_value()) << key;
        EXPECT_EQ(ini.IniValue, expected.value_or("")) << key;
    }
    EXPECT_FALSE(ini.ReadIniKey("S", "a", dir.file("none.ini")));
    EXPECT_TRUE(sink.shown.empty());

    // A folder, a missing folder and an unreadable file are errors the user sees.
    QDir(dir.path()).mkdir("folder.ini");
    EXPECT_FALSE(ini.ReadIniKey("S", "k", dir.file("folder.ini")));
    EXPECT_FALSE(ini.WriteIniKey("S", "k", "v", dir.file("no/such/folder/x.ini")));
    ASSERT_EQ(sink.shown.size(), 2u);
    EXPECT_EQ(sink.shown[0].text, "Error Retrieving Key");
    EXPECT_EQ(sink.shown[1].text, "Error Writing Key");
    EXPECT_EQ(sink.shown[0].title, "TORVEX Terminal");
    if (getuid() != 0) { // root reads everything
        QFile::setPermissions(f, {});
        EXPECT_FALSE(ini.ReadIniKey("S", "a", f));
        EXPECT_EQ(sink.shown.size(), 3u);
    }
}

// Catches a removal aimed at the wrong level (key, section or whole file), a
// removal from a missing file that creates it, and a failed removal that
// raises when told to ignore errors or stays silent when not.
TEST_F(IniHelpersTest, DeleteIniEntryRemovesKeySectionOrFile) {
    const QString f = dir.file("t.ini");
    writeAll(f, "[A]\r\nx=1\r\ny=2\r\n[B]\r\nz=3\r\n");
    ini.DeleteIniEntry(f, "a", "X", true, false);
    EXPECT_EQ(readAll(f), QByteArray("[A]\r\ny=2\r\n[B]\r\nz=3\r\n"));
    ini.DeleteIniEntry(f, "B", "", true, false);
    EXPECT_EQ(readAll(f), QByteArray("[A]\r\ny=2\r\n"));
    EXPECT_THROW(ini.DeleteIniEntry(f, "B", "", true, false), RuntimeError);
    EXPECT_NO_THROW(ini.DeleteIniEntry(f, "B", "", true, true));
    EXPECT_NO_THROW(ini.DeleteIniEntry(f, "A", "missing", true, false)); // as the profile call
    ini.DeleteIniEntry(f, "", "", true, false);
    EXPECT_FALSE(QFile::exists(f));
    try {
        ini.DeleteIniEntry(f, "", "", true, false);
        FAIL() << "no error raised";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 2);
        EXPECT_EQ(e.source(), "DeleteSetting [INI-File]");
        EXPECT_EQ(e.description(), "System Error Code");
    }

    EXPECT_NO_THROW(ini.DeleteIniEntry(f, "A", "x", true, true));
    EXPECT_FALSE(QFile::exists(f));
}

// Catches the store kept anywhere but under XDG_CONFIG_HOME, one program's
// settings read from another's file, and the program folder or theme folder
// taken from anywhere but the store (or its defaults when the store is
// empty), including the quirk that an empty ThemeDir puts the theme files
// right behind ProgramDir with no separator.
TEST(SettingsStore, StoreAndFolders) {
    TempDir dir;
    qputenv("XDG_CONFIG_HOME", dir.file("config").toUtf8());
    qputenv("XDG_DATA_HOME", dir.file("data").toUtf8());
    SettingsStore store = SettingsStore::forCurrentUser();
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(store.fileFor(kFamilyApp), dir.file("config/TORVEX Terminal/settings.ini"));
    Folders f = Folders::fromStore(store);
    qunsetenv("XDG_DATA_HOME");
    EXPECT_EQ(f.ProgramDir, dir.file("data/mirel"));
    EXPECT_TRUE(QFileInfo(f.ProgramDir).isDir());
    EXPECT_EQ(f.themeFile("terminal.skn"), dir.file("data/mirel/themes/Default/terminal.skn"));

    QDir(dir.path()).mkpath("prog/Themes/Dark");
    ASSERT_TRUE(store.SaveSetting(kFamilyApp, "Default", "ProgramDir", dir.file("prog/").toUtf8()));
    ASSERT_TRUE(store.SaveSetting(kFamilyApp, "Default", "ThemeDir", "\\themes\\dark\\"));
    EXPECT_EQ(store.GetSetting("Other App", "Default", "ProgramDir", "d"), "d");
    f = Folders::fromStore(store);
    EXPECT_EQ(f.ProgramDir, dir.file("prog"));
    EXPECT_EQ(f.themeFile("terminal.skn"), dir.file("prog/Themes/Dark/terminal.skn"));
    f.SkinName = "Mirel1024";
    EXPECT_EQ(f.skinOverrideFile(), dir.file("prog/Themes/Dark/Mirel1024.ini"));

    store.SaveSetting(kFamilyApp, "Default", "ThemeDir", "");
    EXPECT_EQ(Folders::fromStore(store).themeFile("terminal.skn"), dir.file("progterminal.skn"));
}

// Catches a log written while switched off, and a stamp taken once instead
// of at each line.
TEST(DebugLog, AppendsStampedLinesOnlyWhenOn) {
    TempDir dir;
    FixedClock clock(QDateTime(QDate(2007, 3, 4), QTime(5, 6, 7)));
    DebugLog log(clock, dir.path());
    log.WriteDebugLog("ignored");
    EXPECT_FALSE(QFile::exists(dir.file("debug.txt")));
    log.setEnabled(true);
    log.WriteDebugLog("POP3 connected");
    clock.advanceSeconds(3600 * 20);
    log.WriteDebugLog("second");
    EXPECT_EQ(readAll(dir.file("debug.txt")),
              QByteArray("2007-03-04 05:06:07 Mirel: POP3 connected\r\n"
                         "2007-03-05 01:06:07 Mirel: second\r\n"));
}

} // namespace
