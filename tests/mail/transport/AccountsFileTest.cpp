#include "mail/transport/AccountsFile.h"
#include "mail/transport/AccountRecord.h"
#include "settings/TripletCodec.h"

#include "IniFixture.h"
#include "TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace mirel;
using namespace mirel::test;

namespace {

unsigned modeOf(const QString& path) {
    struct stat st {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? st.st_mode & 07777 : ~0u;
}

class AccountsFileTest : public IniFixture {
protected:
    Folders folders{dir.file("prog"), Folders::kDefaultThemeDir};
    AccountsFile file{ini, folders};

    void SetUp() override { QDir().mkpath(dir.file("prog/Email")); }
    QByteArray onDisk() { return readAll(file.path()); }
};

TEST_F(AccountsFileTest, MissingFileGivesAnEmptyList) {
    EXPECT_TRUE(file.LoadAccounts().isEmpty());
    EXPECT_TRUE(sink.shown.empty());
}

TEST_F(AccountsFileTest, SavesEncodedKeysAndReadsBothRecordForms) {
    EmailAccountList list;
    list.appendNew("Work");
    list.append("  Home|pop.x:995|ann|abc|1|1|smtp.x|ann@x|Ann Lee|");
    ASSERT_TRUE(file.SaveAccounts(list));

    const QByteArray bytes = onDisk();
    EXPECT_TRUE(bytes.contains("[Email]"));
    EXPECT_TRUE(bytes.contains("0=" + encodeTriplets("* Work||||||||")));
    // The password abc is only encoded: its digits stand in the value.
    EXPECT_TRUE(bytes.contains("124097098099124")); // "|abc|"

    const EmailAccountList back = file.LoadAccounts();
    EXPECT_EQ(back, list);
    EXPECT_EQ(back.defaultIndex(), 0);
    EXPECT_EQ(AccountRecord::field(back.at(1), AccountRecord::SenderName), "Ann Lee");
    EXPECT_EQ(AccountRecord::field(back.at(0), AccountRecord::SenderName), "");
    EXPECT_EQ(modeOf(file.path()), 0600);
}

TEST_F(AccountsFileTest, SaveAfterDeleteDropsOldKeysAndKeepsOtherSections) {
    EmailAccountList list;
    for (const char* n : {"A", "B", "C", "D"})
        list.appendNew(n);
    ASSERT_TRUE(file.SaveAccounts(list));
    ini.WriteIniKey("Other", "keep", "yes", file.path());

    list.removeAt(0); // the default goes
    ASSERT_TRUE(file.SaveAccounts(list));
    EXPECT_TRUE(ini.ReadIniKey("Email", "2", file.path()));
    EXPECT_FALSE(ini.ReadIniKey("Email", "3", file.path()));
    EXPECT_TRUE(ini.ReadIniKey("Other", "keep", file.path()));

    const EmailAccountList back = file.LoadAccounts();
    ASSERT_EQ(back.size(), 3);
    EXPECT_EQ(back.defaultIndex(), -1);
    EXPECT_EQ(AccountRecord::name(back.at(0)), "B");

    ASSERT_TRUE(file.SaveAccounts({}));
    EXPECT_TRUE(file.LoadAccounts().isEmpty());
    EXPECT_TRUE(ini.ReadIniKey("Other", "keep", file.path()));
}

TEST_F(AccountsFileTest, ReadsDamagedFilesWithoutComplaint) {
    struct Case {
        const char* what;
        QByteArray content;
        QList<QByteArray> expected;
    } cases[] = {
        {"gap ends the list", "[Email]\r\n0=065\r\n1=066\r\n3=068\r\n", {"A", "B"}},
        {"no key 0", "[Email]\r\n1=066\r\n", {}},
        {"odd digit count", "[email]\r\n0=06566\r\n", {"AB"}},
        {"garbage digits", "[Email]\r\n0=x6506a\r\n", {QByteArray("\0\x06", 2)}},
        {"empty value", "[Email]\r\n0=\r\n1=065\r\n", {"", "A"}},
        {"out of range", "[Email]\r\n0=999065\r\n", {"?A"}},
        {"not an ini file", QByteArray("\x89PNG\r\n\x1a\n\0\0", 10), {}},
        {"leading zeros are another key", "[Email]\r\n00=065\r\n", {}},
    };
    for (const Case& c : cases) {
        writeAll(file.path(), c.content);
        EXPECT_EQ(file.LoadAccounts().entries(), c.expected) << c.what;
    }
    EXPECT_TRUE(sink.shown.empty());
}

TEST_F(AccountsFileTest, CreatesAMissingMailFolderPrivately) {
    QDir(dir.file("prog/Email")).removeRecursively();
    EmailAccountList list;
    list.appendNew("Solo");
    ASSERT_TRUE(file.SaveAccounts(list));
    EXPECT_EQ(file.LoadAccounts(), list);
    EXPECT_EQ(modeOf(file.path()), 0600);
}

} // namespace
