// Faults while received mail is stored, with real files, a real dovecot and
// the storing done by a second process that can be killed or starved: no
// fault may lose a message or leave part of one behind.
#include "TestSupport.h"
#include "mail/store/MailStore.h"
#include "servers/DovecotServer.h"

#include <QDir>
#include <QFile>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

using namespace mirel;
using namespace mirel::test;

namespace {

using Env = QList<std::pair<const char*, QByteArray>>;

// Runs the helper with extra environment (a kill point, a file size limit);
// returns its exit code, -1 when it was killed.
int runWith(const QStringList& args, const Env& env, QByteArray* out = nullptr) {
    for (const auto& [name, value] : env)
        qputenv(name, value);
    const int code = runHelper(args, out);
    for (const auto& [name, value] : env)
        qunsetenv(name);
    return code;
}

// The ID line comes twice, as some list software sends it: a message must
// not be its own duplicate.
QByteArray message(int n, int attachmentBytes = 0) {
    const QByteArray id = "Message-ID: <m" + QByteArray::number(n) + "@x>\r\n";
    QByteArray m = id + id + "Subject: m" + QByteArray::number(n) +
                   "\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n" +
                   "--b\r\nContent-Type: text/plain\r\n\r\nbody " + QByteArray::number(n) + "\r\n";
    if (attachmentBytes > 0)
        m += "--b\r\nContent-Type: application/octet-stream\r\n\r\n" +
             QByteArray(attachmentBytes, 'a') + "\r\n";
    return m + "--b--\r\n";
}

// The subjects of the folder's messages; fails the test for a message that
// is not whole (body row, attachment rows matching the count) and for rows
// that belong to no message.
QList<QByteArray> wholeMessages(const QString& programDir, const char* folder) {
    const QString dir = programDir + "/Email/" + folder + "/";
    // Read-write: a crash leaves journals the first reader must roll back.
    SQLite::Database db((dir + "index.mdb").toStdString(), SQLite::OPEN_READWRITE);
    db.exec("ATTACH '" + (dir + "data.mdb").toStdString() + "' AS data");
    db.exec("ATTACH '" + (dir + "attachments.mdb").toStdString() + "' AS att");
    SQLite::Statement orphans(db, R"(SELECT (SELECT count(*) FROM data."Message" WHERE "ID" NOT IN
        (SELECT "ID" FROM "Index")) + (SELECT count(*) FROM att."Attachments" WHERE "ID" NOT IN
        (SELECT "ID" FROM "Index")))");
    orphans.executeStep();
    EXPECT_EQ(orphans.getColumn(0).getInt(), 0) << "orphan rows in " << folder;
    SQLite::Statement st(db, R"(SELECT "Subject", "Attachments",
        (SELECT count(*) FROM data."Message" m WHERE m."ID" = i."ID"),
        (SELECT count(*) FROM att."Attachments" a WHERE a."ID" = i."ID")
        FROM "Index" i ORDER BY "Subject")");
    QList<QByteArray> subjects;
    while (st.executeStep()) {
        const QByteArray subject = st.getColumn(0).getString().c_str();
        EXPECT_EQ(st.getColumn(2).getInt(), 1) << subject.constData() << " has no body";
        EXPECT_EQ(st.getColumn(1).getInt(), st.getColumn(3).getInt()) << subject.constData();
        subjects << subject;
    }
    return subjects;
}

// Permissions do not stop root; an immutable folder does.
void setWritable(const QString& folder, bool writable) {
    if (geteuid() == 0)
        QProcess::execute("chattr", {writable ? "-i" : "+i", folder});
    else
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner |
                                          (writable ? QFile::WriteOwner : QFile::Permissions()));
}

class ReceiveFaultTest : public ::testing::Test {
protected:
    DovecotServer pop;
    void SetUp() override { ensureCoreApp(); }

    QStringList receiveArgs(const QString& programDir, const char* user) {
        return {"receive", programDir, QString::number(pop.port()), user, "pw", "2"};
    }

    // Runs the helper killed after its k-th write, k = 1, 4, 7, … (every
    // stretch between two syncs is still hit), each time in a fresh program
    // folder that prepare fills and that check then looks at, until a run
    // ends on its own. Returns the last k.
    int killAfterEachWrite(const std::function<QStringList(const QString&)>& prepare,
                           const std::function<void(const QString&, int k, bool killed)>& check) {
        int k = 1;
        for (; k < 1000; k += 3) {
            TempDir dir;
            const bool killed = runWith(prepare(dir.path()),
                                        {{"MIREL_KILL_AFTER_WRITES", QByteArray::number(k)}}) == -1;
            check(dir.path(), k, killed);
            if (!killed || HasFailure())
                break;
        }
        return k;
    }
};

// Catches a record written before the store, a group made durable after
// the server was told to delete, and a message half written: killed after
// any write to a file, then run again, the session ends with each
// message stored exactly once and whole, and the server empty.
TEST_F(ReceiveFaultTest, KilledAfterAnyWriteAFreshSessionStoresEachMessageOnce) {
    pop.addUser("ann", "pw");
    ASSERT_TRUE(pop.start());
    auto deliver = [&](const QString& dir) {
        for (int n = 1; n <= 3; ++n)
            pop.deliver("ann", message(n, n == 2 ? 5000 : 0));
        return receiveArgs(dir, "ann");
    };
    const int k = killAfterEachWrite(deliver, [&](const QString& dir, int k, bool) {
        wholeMessages(dir, "0");
        EXPECT_NE(runWith(receiveArgs(dir, "ann"), {}), -1) << "killed without a kill point";
        EXPECT_EQ(wholeMessages(dir, "0"), (QList<QByteArray>{"m1", "m2", "m3"}))
            << "killed after write " << k;
        EXPECT_EQ(pop.messagesOf("ann"), 0) << "killed after write " << k;
    });
    EXPECT_GT(k, 20) << "fewer writes than expected: is the kill hook in place?";
    RecordProperty("kill_points", k);
}

// Catches a move that commits file by file: killed after any write, the
// message is whole in exactly one of the two folders.
TEST_F(ReceiveFaultTest, AMoveKilledAfterAnyWriteLeavesTheMessageInOneFolder) {
    auto makeStore = [](const QString& dir) {
        RecordingMessageSink sink;
        SystemClock clock;
        MailStore store(dir, clock, sink);
        for (const char* folder : {"1", "2"}) {
            QDir().mkpath(store.folderDir(folder));
            store.CreateIndexDatabase(folder);
            store.CreateDataDatabase(folder);
            store.CreateAttachmentsDatabase(folder);
        }
        NewIndexFields f;
        f.subject = "moving";
        EXPECT_TRUE(store.createMessage("1", f, {0, "text", {}, "hdr"},
                                        {{"a", "1"}, {"b", QByteArray(9000, 'b')}}));
        return QStringList{"move", dir, "1", "2", "1"};
    };
    killAfterEachWrite(makeStore, [](const QString& dir, int k, bool killed) {
        const qsizetype inSource = wholeMessages(dir, "1").size();
        const qsizetype inDest = wholeMessages(dir, "2").size();
        EXPECT_EQ(inSource + inDest, 1) << "killed after write " << k;
        EXPECT_TRUE(killed || inDest == 1);
    });
}

// Catches a message deleted from the server although it was not stored:
// each fault makes the store fail, the message stays on the server with a
// status line, and the next session without the fault stores it.
TEST_F(ReceiveFaultTest, AFailedStoreLeavesTheMessageOnTheServerForTheNextSession) {
    struct Fault {
        const char* user;
        const char* lockedFile; // held locked by another process
        Env env;
        bool readOnly = false;
    };
    const Fault faults[] = {
        {"lockindex", "index.mdb", {}},
        {"lockdata", "data.mdb", {}},
        {"lockatt", "attachments.mdb", {}},
        {"readonly", nullptr, {}, true},
        {"diskfull", nullptr, {{"MIREL_FILE_SIZE_LIMIT", "60000"}}},
        {"toolarge", nullptr, {{"MIREL_SQLITE_MAX_LENGTH", "50000"}}},
    };
    for (const Fault& f : faults)
        pop.addUser(f.user, "pw");
    ASSERT_TRUE(pop.start());
    for (const Fault& f : faults) {
        TempDir dir;
        runWith(receiveArgs(dir.path(), f.user), {}); // makes the folders
        pop.deliver(f.user, message(1));
        pop.deliver(f.user, message(2, 100000));
        const QString inbox = dir.path() + "/Email/0/";
        std::unique_ptr<QProcess> holder;
        if (f.lockedFile) {
            holder.reset(startHelper({"hold-lock", inbox + f.lockedFile}));
            holder->waitForReadyRead(10000);
        }
        if (f.readOnly)
            setWritable(inbox, false);
        QByteArray out;
        runWith(receiveArgs(dir.path(), f.user), f.env, &out);
        if (f.readOnly)
            setWritable(inbox, true);
        if (holder) {
            holder->closeWriteChannel();
            holder->waitForFinished(10000);
        }
        EXPECT_TRUE(out.contains("could not be stored and stays on the server"))
            << f.user << ": " << out.constData();
        EXPECT_EQ(pop.messagesOf(f.user) + wholeMessages(dir.path(), "0").size(), 2) << f.user;
        EXPECT_GT(pop.messagesOf(f.user), 0) << f.user;

        runWith(receiveArgs(dir.path(), f.user), {});
        EXPECT_EQ(wholeMessages(dir.path(), "0"), (QList<QByteArray>{"m1", "m2"})) << f.user;
        EXPECT_EQ(pop.messagesOf(f.user), 0) << f.user;
    }
}

} // namespace
