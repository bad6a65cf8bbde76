#include "mail/store/MailStore.h"
#include "MailStoreFixture.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class MailStoreTest : public MailStoreFixture {
protected:
    void SetUp() override {
        store.setBusyTimeout(100);
        MailStoreFixture::SetUp();
    }

    qint32 add(QByteArrayView folder, const QByteArray& subject,
               std::vector<AttachmentRow> attachments = {}, MessageRow bodies = {}) {
        NewIndexFields f;
        f.subject = subject;
        f.from = "\"Ann\" <ann@example.org>";
        f.to = "bob@example.net";
        f.date = "Sun, 22 Nov 2026 10:00:00 +0100";
        const auto id = store.createMessage(folder, f, bodies, attachments);
        EXPECT_TRUE(id.has_value());
        clock.advanceSeconds(1);
        return id.value_or(-1);
    }
};

// Catches a fixed folder or the blank page not made at start-up, and account
// keys read past the first gap.
TEST_F(MailStoreTest, StartupBuildsTheFolderTreeAndReadsTheAccountList) {
    for (const char* k : {"0", "1", "2", "3"})
        for (const char* f : {"index.mdb", "data.mdb", "attachments.mdb"})
            EXPECT_GT(QFileInfo(root(QStringLiteral("Email/%1/%2").arg(k, f))).size(), 0)
                << k << "/" << f;
    EXPECT_TRUE(QFileInfo(root("EmailTemp")).isDir());
    EXPECT_EQ(readAll(root("Email/torvex-terminal.html")), MailStore::kBlankPage);

    // Keys are read from "0" up to the first gap; values stay as written.
    writeAll(root("Email/accounts.ini"), "[Email]\r\n0=065066|x\r\n1=067\r\n3=never read\r\n");
    EXPECT_EQ(store.MailStoreStartup(ini), (QList<QByteArray>{"065066|x", "067"}));
    EXPECT_TRUE(sink.shown.empty());
}

// Catches a folder "repaired" over files that are still there, and an empty
// data file taken for a working one.
TEST_F(MailStoreTest, ExistingDataFileIsNotRepaired) {
    QFile::remove(store.databasePath("2", "index.mdb"));
    store.MailStoreStartup(ini);
    EXPECT_FALSE(QFileInfo::exists(store.databasePath("2", "index.mdb")));
    // An empty data.mdb counts as missing: all three are made again.
    writeAll(store.databasePath("2", "data.mdb"), {});
    store.MailStoreStartup(ini);
    EXPECT_TRUE(QFileInfo::exists(store.databasePath("2", "index.mdb")));
    EXPECT_GT(QFileInfo(store.databasePath("2", "data.mdb")).size(), 0);
}

// Catches a list sorted by the Date text or the ID, ties broken the wrong
// way, and the outbox sent in another order than it was written.
TEST_F(MailStoreTest, ListIsNewestFirstAndOutboxIsInStoredOrder) {
    const qint32 a = add("1", "first");
    const qint32 b = add("1", "second");
    clock.advanceSeconds(-60); // a Date or clock that runs backwards does not matter for ties
    const qint32 c = add("1", "third, stamped earlier");
    clock.advanceSeconds(120);
    const auto rows = store.FillMessageIndexList("1");
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].id, b);
    EXPECT_EQ(rows[1].id, a);
    EXPECT_EQ(rows[2].id, c);
    EXPECT_EQ(rows[0].listLine(), QByteArray::number(b) +
                                      "\t0\t0\tsecond\t\"Ann\" <ann@example.org>\t"
                                      "Sun, 22 Nov 2026 10:00:00 +0100\tbob@example.net");
    EXPECT_EQ(store.FillOutboxList(),
              (QList<QByteArray>{"\"Ann\" <ann@example.org>|" + QByteArray::number(a),
                                 "\"Ann\" <ann@example.org>|" + QByteArray::number(b),
                                 "\"Ann\" <ann@example.org>|" + QByteArray::number(c)}));
}

// Catches a move that leaves rows behind, loses the read mark or stored
// time, or reuses an ID.
TEST_F(MailStoreTest, MoveGivesANewIdAndTakesEveryRowAlong) {
    const qint32 inDest = add("3", "already in 3"); // the destination's counter is ahead
    const qint32 id =
        add("0", "moving", {{"name=\"1\"", "one"}, {"name=\"2\"", "two"}, {"name=\"3\"", "three"}},
            {0, "text", "html", "hdr"});
    store.setReaded("0", id, 1);
    const IndexRow before = *store.readIndexRow("0", id);
    const auto moved = store.MoveMessage("0", "3", id);
    ASSERT_TRUE(moved.has_value());
    EXPECT_NE(*moved, inDest);
    EXPECT_FALSE(store.readIndexRow("0", id).has_value());
    EXPECT_FALSE(store.readMessageRow("0", id).has_value());
    EXPECT_TRUE(store.readAttachments("0", id).empty());

    const IndexRow after = *store.readIndexRow("3", *moved);
    EXPECT_EQ(after.subject, before.subject);
    EXPECT_EQ(after.readed, 1);
    EXPECT_EQ(after.attachments, 3);
    EXPECT_EQ(after.realDate, before.realDate); // a move keeps the time it was stored
    EXPECT_EQ(store.readMessageRow("3", *moved)->html, QByteArray("html"));
    const auto atts = store.readAttachments("3", *moved);
    ASSERT_EQ(atts.size(), 3u);
    EXPECT_EQ(atts[2].data, QByteArray("three"));

    // IDs are never handed out twice, even after the row is gone.
    EXPECT_GT(add("0", "next"), id);
    EXPECT_FALSE(store.MoveMessage("0", "3", id).has_value());
}

// Catches a delete that stops at a missing row or takes another message's
// attachments.
TEST_F(MailStoreTest, DeleteRemovesAllRowsAndSkipsMissingOnes) {
    const qint32 id = add("3", "gone", {{"a", "1"}, {"b", "2"}}, {0, "t", {}, {}});
    const qint32 keep = add("3", "stays", {{"c", "3"}});
    // The message row is missing: the other two are still removed.
    SQLite::Database(store.databasePath("3", "data.mdb").toStdString(), SQLite::OPEN_READWRITE)
        .exec("DELETE FROM message");
    EXPECT_TRUE(store.DeleteMessage("3", id));
    EXPECT_FALSE(store.readIndexRow("3", id).has_value());
    EXPECT_TRUE(store.readAttachments("3", id).empty());
    EXPECT_EQ(store.readAttachments("3", keep).size(), 1u);
    EXPECT_TRUE(sink.shown.empty());
}

// Catches a locked or broken file that hangs, crashes or blocks the other
// folders, and a folder made by merely listing it.
TEST_F(MailStoreTest, LockedOrCorruptFileEndsTheOperationWithAMessage) {
    const qint32 id = add("0", "inbox message");
    add("2", "sent message");

    // Another connection holds the write lock of folder 0's index.
    SQLite::Database other(store.databasePath("0", "index.mdb").toStdString(),
                           SQLite::OPEN_READWRITE);
    other.exec("BEGIN EXCLUSIVE");
    NewIndexFields f;
    f.subject = "blocked";
    EXPECT_FALSE(store.createMessage("0", f, {}, {}).has_value());
    ASSERT_EQ(sink.shown.size(), 1u);
    EXPECT_TRUE(sink.shown[0].text.contains("\"0\"")) << sink.shown[0].text.toStdString();
    EXPECT_TRUE(sink.shown[0].text.contains("locked")) << sink.shown[0].text.toStdString();
    EXPECT_EQ(sink.shown[0].title, kMessageTitle);
    EXPECT_EQ(store.FillMessageIndexList("2").size(), 1u); // other folders still work
    other.exec("ROLLBACK");
    EXPECT_EQ(store.FillMessageIndexList("0").size(), 1u);

    // A file that is not a database at all.
    writeAll(store.databasePath("0", "data.mdb"), QByteArray(4096, 'x'));
    sink.shown.clear();
    EXPECT_FALSE(store.readMessageRow("0", id).has_value());
    ASSERT_EQ(sink.shown.size(), 1u);
    EXPECT_TRUE(sink.shown[0].text.contains("data.mdb"));
    EXPECT_EQ(store.FillMessageIndexList("2").size(), 1u);

    // A folder that was never made.
    sink.shown.clear();
    EXPECT_TRUE(store.FillMessageIndexList("Archive").empty());
    EXPECT_EQ(sink.shown.size(), 1u);
    EXPECT_FALSE(QFileInfo::exists(store.databasePath("Archive", "index.mdb")));
}

// Catches a user folder missed for the case of its name, and a move onto
// itself that duplicates the message.
TEST_F(MailStoreTest, UserFolderIsFoundWithoutRegardToCase) {
    QDir(root()).mkpath("Email/Archive");
    for (auto create : {&MailStore::CreateDataDatabase, &MailStore::CreateIndexDatabase,
                        &MailStore::CreateAttachmentsDatabase})
        (store.*create)("Archive");
    const qint32 id = add("archive", "kept");
    EXPECT_EQ(store.FillMessageIndexList("ARCHIVE").at(0).id, id);
    EXPECT_EQ(store.MoveMessage("Archive", "archive", id), id); // one folder: nothing moves
    EXPECT_EQ(store.FillMessageIndexList("Archive").size(), 1u);
}

} // namespace
