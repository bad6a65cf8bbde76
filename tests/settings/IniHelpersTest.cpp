#include "settings/IniHelpers.h"

#include "IniFixture.h"
#include "platform/RuntimeError.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class IniHelpersTest : public IniFixture {
protected:
    QString file(const char* name = "t.ini") { return dir.file(name); }
};

TEST_F(IniHelpersTest, ReadResultsAndIniValue) {
    QByteArray content = "[S]\r\na=1\r\nempty=\r\nnf=NotFound\r\nnfq=\"NotFound\"\r\n";
    content += QByteArray("nul=ab\0cd\r\n", 11);
    content += "nf2= NotFound \r\n";
    writeAll(file(), content);
    EXPECT_TRUE(ini.ReadIniKey("S", "a", file()));
    EXPECT_EQ(ini.IniValue, "1");

    EXPECT_TRUE(ini.ReadIniKey("S", "empty", file()));
    EXPECT_EQ(ini.IniValue, "");

    // A failed read empties the previous value.
    ini.IniValue = "stale";
    EXPECT_FALSE(ini.ReadIniKey("S", "nf", file()));
    EXPECT_EQ(ini.IniValue, "");
    EXPECT_FALSE(ini.ReadIniKey("S", "nfq", file()));
    EXPECT_FALSE(ini.ReadIniKey("S", "nf2", file()));

    EXPECT_TRUE(ini.ReadIniKey("S", "nul", file()));
    EXPECT_EQ(ini.IniValue, "ab");

    EXPECT_FALSE(ini.ReadIniKey("S", "missing", file()));
    EXPECT_FALSE(ini.ReadIniKey("T", "a", file()));
    EXPECT_FALSE(ini.ReadIniKey("S", "a", file("none.ini")));
    EXPECT_TRUE(sink.shown.empty());
}

TEST_F(IniHelpersTest, LongValueIsCutToTheBuffer) {
    const QByteArray big(40000, 'x');
    ASSERT_TRUE(ini.WriteIniKey("S", "k", big, file()));
    ASSERT_TRUE(ini.ReadIniKey("S", "k", file()));
    EXPECT_EQ(ini.IniValue.size(), 31999);
    ASSERT_TRUE(ini.WriteIniKey("S", "k", QByteArray(31999, 'y'), file()));
    EXPECT_TRUE(ini.IniValue.isEmpty()); // a write empties the last value read
    ASSERT_TRUE(ini.ReadIniKey("S", "k", file()));
    EXPECT_EQ(ini.IniValue, QByteArray(31999, 'y'));
}

TEST_F(IniHelpersTest, FailuresShowTheirMessageAndReadAsMissing) {
    QDir(dir.path()).mkdir("folder.ini");
    EXPECT_FALSE(ini.ReadIniKey("S", "k", file("folder.ini")));
    EXPECT_FALSE(ini.WriteIniKey("S", "k", "v", file("folder.ini")));
    ASSERT_EQ(sink.shown.size(), 2u);
    EXPECT_EQ(sink.shown[0].text, "Error Retrieving Key");
    EXPECT_EQ(sink.shown[1].text, "Error Writing Key");
    EXPECT_EQ(sink.shown[0].title, "TORVEX Terminal");
}

TEST_F(IniHelpersTest, DeleteKeySectionAndFile) {
    writeAll(file(), "[A]\r\nx=1\r\ny=2\r\n[B]\r\nz=3\r\n");
    ini.DeleteIniEntry(file(), "a", "X", true, false);
    EXPECT_EQ(readAll(file()), QByteArray("[A]\r\ny=2\r\n[B]\r\nz=3\r\n"));
    ini.DeleteIniEntry(file(), "A", "", true, false);
    EXPECT_EQ(readAll(file()), QByteArray("[B]\r\nz=3\r\n"));
    ini.DeleteIniEntry(file(), "", "", true, false);
    EXPECT_FALSE(QFile::exists(file()));
}

TEST_F(IniHelpersTest, DeleteFailuresRaiseUnlessIgnored) {
    try {
        ini.DeleteIniEntry(file("none.ini"), "", "", true, false);
        FAIL() << "no error raised";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 2);
        EXPECT_EQ(e.source(), "DeleteSetting [INI-File]");
        EXPECT_EQ(e.description(), "System Error Code");
    }
    writeAll(file(), "[A]\r\nx=1\r\n");
    EXPECT_THROW(ini.DeleteIniEntry(file(), "B", "", true, false), RuntimeError);
    EXPECT_THROW(ini.DeleteIniEntry(file("none.ini"), "A", "x", true, false), RuntimeError);
    EXPECT_NO_THROW(ini.DeleteIniEntry(file("none.ini"), "", "", true, true));
    EXPECT_NO_THROW(ini.DeleteIniEntry(file(), "B", "", true, true));
    EXPECT_NO_THROW(ini.DeleteIniEntry(file(), "A", "missing", true, false));
    EXPECT_EQ(readAll(file()), QByteArray("[A]\r\nx=1\r\n"));
}

TEST_F(IniHelpersTest, DeleteFromTheSharedStore) {
    store.SaveSetting(kFamilyApp, "Voice", "Mirel", "NOTES");
    store.SaveSetting(kFamilyApp, "Voice", "Other", "X");
    ini.DeleteIniEntry(kFamilyApp, "VOICE", "mirel", false, false);
    EXPECT_EQ(store.GetSetting(kFamilyApp, "Voice", "Mirel", "gone"), "gone");
    EXPECT_EQ(store.GetSetting(kFamilyApp, "Voice", "Other"), "X");
    ini.DeleteIniEntry(kFamilyApp, "Voice", "", false, false);
    EXPECT_EQ(store.GetSetting(kFamilyApp, "Voice", "Other", "gone"), "gone");
    EXPECT_THROW(ini.DeleteIniEntry(kFamilyApp, "Voice", "", false, false), RuntimeError);
}

TEST_F(IniHelpersTest, ShortPathOfIsThePathWhenItExists) {
    writeAll(file("My File.txt"), "x");
    EXPECT_EQ(IniHelpers::ShortPathOf(dir.path() + "\\my file.TXT"), file("My File.txt"));
    EXPECT_EQ(IniHelpers::ShortPathOf(file("missing.txt")), "");
}

} // namespace
