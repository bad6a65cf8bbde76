#include "mail/transport/AccountsFile.h"
#include "mail/transport/AccountRecord.h"
#include "settings/TripletCodec.h"

#include "IniFixture.h"
#include "MailStoreFixture.h"
#include "TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
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

// Catches records stored in another form than the digit triplets, a record
// read back changed, a missing mail folder not made, and a file others may
// read (it holds the passwords).
TEST_F(AccountsFileTest, SavesEncodedKeysAndReadsBothRecordForms) {
    QDir(dir.file("prog/Email")).removeRecursively();
    EmailAccountList list;
    list.appendNew("Work");
    list.append("  Home|pop.x:995|ann|abc|1|1|smtp.x|ann@x|Ann Lee|");
    ASSERT_TRUE(file.SaveAccounts(list));

    const QByteArray bytes = onDisk();
    EXPECT_TRUE(bytes.contains("0=" + encodeTriplets("* Work||||||||")));
    // The password abc is only encoded: its digits stand in the value.
    EXPECT_TRUE(bytes.contains("124097098099124")); // "|abc|"

    const EmailAccountList back = file.LoadAccounts();
    EXPECT_EQ(back, list);
    EXPECT_EQ(back.defaultIndex(), 0);
    EXPECT_EQ(modeOf(file.path()), 0600);
}

// Catches keys of deleted accounts read back as accounts, and other
// sections lost on saving.
TEST_F(AccountsFileTest, SaveAfterDeleteDropsOldKeysAndKeepsOtherSections) {
    EmailAccountList list;
    for (const char* n : {"A", "B", "C", "D"})
        list.appendNew(n);
    ASSERT_TRUE(file.SaveAccounts(list));
    ini.WriteIniKey("Other", "keep", "yes", file.path());

    list.removeAt(0); // the default goes
    ASSERT_TRUE(file.SaveAccounts(list));
    EXPECT_TRUE(ini.ReadIniKey("Other", "keep", file.path()));

    const EmailAccountList back = file.LoadAccounts(); // key 3 would come back as a fourth
    ASSERT_EQ(back.size(), 3);
    EXPECT_EQ(back.defaultIndex(), -1);
    EXPECT_EQ(AccountRecord::name(back.at(0)), "B");

    ASSERT_TRUE(file.SaveAccounts({}));
    EXPECT_TRUE(file.LoadAccounts().isEmpty());
    EXPECT_TRUE(ini.ReadIniKey("Other", "keep", file.path()));
}

// Catches a missing or damaged file that stops the program or complains;
// the rows are in tests/data/mail/account-rules.json.
TEST_F(AccountsFileTest, ReadsMissingAndDamagedFilesWithoutComplaint) {
    EXPECT_TRUE(file.LoadAccounts().isEmpty());
    const QJsonArray rows = jsonTestData("mail/account-rules.json")["damaged"].toArray();
    ASSERT_FALSE(rows.isEmpty());
    for (const QJsonValue c : rows) {
        writeAll(file.path(), c[1].toString().toLatin1());
        QList<QByteArray> expected;
        for (const QJsonValue e : c[2].toArray())
            expected << e.toString().toLatin1();
        EXPECT_EQ(file.LoadAccounts().entries(), expected) << c[0].toString().toStdString();
    }
    EXPECT_TRUE(sink.shown.empty());
}

} // namespace
