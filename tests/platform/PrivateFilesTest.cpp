// Every file the program creates for the user's data, whatever the umask.
#include "platform/PrivateFiles.h"

#include "TestSupport.h"
#include "mail/store/MailStore.h"
#include "mail/transport/AccountsFile.h"
#include "organiser/TextFile.h"
#include "platform/Clock.h"
#include "platform/SettingsStore.h"
#include "settings/DebugLog.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"

#include <QDirIterator>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches mail databases, the shared store (gate password), notes, the
// debug log and their folders being created readable by other users, and
// an accounts file left readable by an older version staying so.
TEST(PrivateFiles, EverythingCreatedIsOwnerOnly) {
    const mode_t oldMask = ::umask(022);
    TempDir dir;
    const QString prog = dir.file("prog");
    SystemClock clock;
    RecordingMessageSink sink;
    SettingsStore settings(dir.file("config"));
    ASSERT_TRUE(settings.SaveSetting(kFamilyApp, "Default", "Password", "x"));
    IniHelpers ini(sink, settings);
    Folders folders;
    folders.ProgramDir = prog;
    ASSERT_TRUE(makePrivateFolder(prog + "/Mirel/Notes"));
    MailStore store(prog, clock, sink);
    store.MailStoreStartup(ini);
    DebugLog(clock, prog, true).WriteDebugLog("started");
    ASSERT_TRUE(TextFile::write(prog + "/Mirel/Notes/1.txt", "note"));
    QDir().mkpath(prog + "/email");
    writeAll(prog + "/email/accounts.ini", "[Email]\r\n");
    QFile::setPermissions(prog + "/email/accounts.ini", QFile::ReadOwner | QFile::ReadOther);
    AccountsFile(ini, folders).LoadAccounts();
    ::umask(oldMask);

    int seen = 0;
    QDirIterator it(dir.path(), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (path == prog + "/email")
            continue; // made by the test itself
        struct stat st {};
        ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, S_ISDIR(st.st_mode) ? 0700u : 0600u) << path.toStdString();
        ++seen;
    }
    EXPECT_GT(seen, 15);
}

} // namespace
