// The settings layer: the profile-style INI helpers, the shared store and
// the folders read from it, the debug log, and the small text rules the skin
// and store formats are read and written by (one table in tests/data: digit
// triplets, the leading number of a field, skin booleans, comma lists,
// colours and names compared without case).
#include "settings/IniHelpers.h"

#include "IniFixture.h"
#include "platform/CaseFold.h"
#include "platform/RuntimeError.h"
#include "settings/CommaList.h"
#include "settings/DebugLog.h"
#include "settings/Folders.h"
#include "settings/TripletCodec.h"
#include "skin/ControlLine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <functional>
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
    for (const auto& r : readTable("tables/ini-read-key.txt")) {
        ini.IniValue = "stale";
        const bool found = r[1] != "<missing>";
        EXPECT_EQ(ini.ReadIniKey("S", r[0], f), found) << r[0].constData();
        EXPECT_EQ(ini.IniValue, found ? r[1] : QByteArray()) << r[0].constData();
    }
    EXPECT_TRUE(ini.ReadIniKey("S", "big", f));
    EXPECT_EQ(ini.IniValue, QByteArray(31999, 'x')); // cut to the buffer
    EXPECT_FALSE(ini.ReadIniKey("S", "a", dir.file("none.ini")));
    EXPECT_TRUE(sink.shown.empty());

    // A folder, a missing folder and an unreadable file are errors the user sees.
    QDir(dir.path()).mkdir("folder.ini");
    EXPECT_FALSE(ini.ReadIniKey("S", "k", dir.file("folder.ini")));
    EXPECT_FALSE(ini.WriteIniKey("S", "k", "v", dir.file("no/such/folder/x.ini")));
    ASSERT_EQ(sink.shown.size(), 2u);
    EXPECT_EQ(sink.shown[0].text, "Error Retrieving Key");
    EXPECT_EQ(sink.shown[1].text, "Error Writing Key");
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
    EXPECT_THROW(ini.DeleteIniEntry(f, "", "", true, false), RuntimeError);
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

// Catches a rule that reads broken input differently from the files it was
// made for: a short or non-numeric triplet group, a number with a sign,
// blanks or an overflow, a boolean word or number read as no answer (or the
// other way round), a fallback not used when there is no answer, a byte
// written as triplets that does not read back, quotes honoured in a comma
// list, a colour channel left unclamped, and case folded for the wrong bytes.
TEST(TextRules, EveryRowOfTheTable) {
    const QHash<QByteArray, std::function<QByteArray(const QByteArray&)>> rules = {
        {"triplets", [](const QByteArray& in) { return decodeTriplets(in); }},
        {"number", [](const QByteArray& in) { return QByteArray::number(leadingNumber(in)); }},
        {"bool",
         [](const QByteArray& in) {
             const std::optional<bool> v = parseSkinBool(in);
             EXPECT_EQ(parseSkinBool(in, false), v.value_or(false));
             EXPECT_EQ(parseSkinBool(in, true), v.value_or(true));
             return QByteArray(!v ? "none" : *v ? "true" : "false");
         }},
        {"encode",
         [](const QByteArray& in) {
             EXPECT_EQ(decodeTriplets(encodeTriplets(in)), in);
             return encodeTriplets(in);
         }},
        {"split", [](const QByteArray& in) { return splitCommaList(in).join('|'); }},
        {"rgb",
         [](const QByteArray& in) {
             const Rgb c = parseRgb(in);
             return QByteArray::number(c.r) + ',' + QByteArray::number(c.g) + ',' +
                    QByteArray::number(c.b);
         }},
        {"compare",
         [](const QByteArray& in) {
             const QList<QByteArray> w = in.split(' ');
             const int order = compareNoCase(w[0], w[1]);
             EXPECT_EQ(equalsNoCase(w[0], w[1]), order == 0);
             return QByteArray::number((order > 0) - (order < 0));
         }},
    };
    for (const auto& r : readTable("tables/text-rules.txt")) {
        ASSERT_TRUE(rules.contains(r[0])) << r[0].constData();
        EXPECT_EQ(rules[r[0]](r[1]), r[2]) << r[0].constData() << " '" << r[1].constData() << "'";
    }
}

} // namespace
