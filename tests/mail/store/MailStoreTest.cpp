#include "mail/store/MailStore.h"
#include "MailStoreFixture.h"

#include <QFileInfo>
#include <SQLiteCpp/Database.h>
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

    // The one message shown since the last check; it names what failed.
    void expectOneReport(std::initializer_list<const char*> names) {
        ASSERT_EQ(sink.shown.size(), 1u);
        for (const char* name : names)
            EXPECT_TRUE(sink.shown[0].text.contains(name)) << sink.shown[0].text.toStdString();
        sink.shown.clear();
    }
};

// Catches a fixed folder or the blank page not made at start-up, account keys
// read past the first gap, a folder "repaired" over files that are still
// there, and an empty data file taken for a working one.
TEST_F(MailStoreTest, StartupMakesWhatIsMissingAndReadsTheAccountList) {
    for (const char* k : {"0", "1", "2", "3"})
        for (const char* f : {"index.mdb", "data.mdb", "attachments.mdb"})
            EXPECT_GT(QFileInfo(store.databasePath(k, f)).size(), 0) << k << "/" << f;
    EXPECT_TRUE(QFileInfo(root("EmailTemp")).isDir());
    EXPECT_EQ(readAll(root("Email/torvex-terminal.html")), MailStore::kBlankPage);

    writeAll(root("Email/accounts.ini"), "[Email]\r\n0=065066|x\r\n1=067\r\n3=never read\r\n");
    QFile::remove(store.databasePath("2", "index.mdb"));
    EXPECT_EQ(store.MailStoreStartup(ini), (QList<QByteArray>{"065066|x", "067"}));
    EXPECT_FALSE(QFileInfo::exists(store.databasePath("2", "index.mdb")));
    writeAll(store.databasePath("2", "data.mdb"), {}); // counts as missing: all three again
    store.MailStoreStartup(ini);
    EXPECT_GT(QFileInfo(store.databasePath("2", "index.mdb")).size(), 0);
    EXPECT_GT(QFileInfo(store.databasePath("2", "data.mdb")).size(), 0);
    EXPECT_TRUE(sink.shown.empty());
}

// Catches a list sorted by the Date text or the ID, ties broken the wrong
// way, and the outbox sent in another order than it was written.
TEST_F(MailStoreTest, ListIsNewestFirstAndOutboxIsInStoredOrder) {
    const qint32 a = addMessage("1", "first");
    const qint32 b = addMessage("1", "second");
    clock.advanceSeconds(-60); // a clock that runs backwards does not matter for ties
    const qint32 c = addMessage("1", "third, stamped earlier");
    const auto rows = store.FillMessageIndexList("1");
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(QList<qint32>({rows[0].id, rows[1].id, rows[2].id}), QList<qint32>({b, a, c}));
    EXPECT_EQ(rows[0].listLine(), QByteArray::number(b) +
                                      "\t0\t0\tsecond\tAnn <a@x.org>\t"
                                      "Sun, 22 Nov 2026 10:00:00 +0100\tb@y.net");
    EXPECT_EQ(store.FillOutboxList(),
              (QList<QByteArray>{"Ann <a@x.org>|1", "Ann <a@x.org>|2", "Ann <a@x.org>|3"}));
}

// Catches a move that leaves rows behind, loses the read mark, the stored
// time or the attachments' order, or reuses an ID; a delete that stops at a
// missing row or takes another message's attachments.
TEST_F(MailStoreTest, MoveAndDeleteTakeEveryRowOfTheirMessage) {
    const qint32 inDest = addMessage("3", "already in 3"); // the destination's counter is ahead
    const qint32 id = addMessage("0", "moving", {{"1", "one"}, {"2", "two"}, {"3", "three"}},
                                 {0, "text", "html", "hdr", {}, {}});
    store.setReaded("0", id, 1);
    const IndexRow before = *store.readIndexRow("0", id);
    const auto moved = store.MoveMessage("0", "3", id);
    ASSERT_TRUE(moved.has_value());
    EXPECT_NE(*moved, inDest);
    EXPECT_FALSE(store.readIndexRow("0", id).has_value());
    EXPECT_FALSE(store.readMessageRow("0", id).has_value());
    EXPECT_TRUE(store.readAttachments("0", id).empty());
    const IndexRow after = *store.readIndexRow("3", *moved);
    auto fields = [](const IndexRow& r) { return r.listLine().mid(r.listLine().indexOf('\t')); };
    EXPECT_EQ(fields(after), fields(before));   // read mark, attachment count, texts
    EXPECT_EQ(after.realDate, before.realDate); // a move keeps the time it was stored
    EXPECT_EQ(store.readMessageRow("3", *moved)->html, QByteArray("html"));
    const auto atts = store.readAttachments("3", *moved);
    ASSERT_EQ(atts.size(), 3u);
    EXPECT_EQ(atts[2].data, QByteArray("three"));
    EXPECT_GT(addMessage("0", "next"), id); // IDs are never handed out twice
    EXPECT_FALSE(store.MoveMessage("0", "3", id).has_value());

    // The message row is missing: the other two are still removed.
    const qint32 keep = addMessage("3", "stays", {{"c", "3"}});
    SQLite::Database(store.databasePath("3", "data.mdb").toStdString(), SQLite::OPEN_READWRITE)
        .exec("DELETE FROM message");
    EXPECT_TRUE(store.DeleteMessage("3", *moved));
    EXPECT_FALSE(store.readIndexRow("3", *moved).has_value());
    EXPECT_TRUE(store.readAttachments("3", *moved).empty());
    EXPECT_EQ(store.readAttachments("3", keep).size(), 1u);
    EXPECT_TRUE(sink.shown.empty());
}

// Catches a locked or broken file that hangs, crashes or blocks the other
// folders, and a folder made by merely listing it.
TEST_F(MailStoreTest, LockedOrCorruptFileEndsTheOperationWithAMessage) {
    const qint32 id = addMessage("0", "inbox message");
    addMessage("2", "sent message");
    SQLite::Database other(store.databasePath("0", "index.mdb").toStdString(),
                           SQLite::OPEN_READWRITE);
    other.exec("BEGIN EXCLUSIVE");
    EXPECT_FALSE(store.createMessage("0", {"blocked", {}, {}, {}}, {}, {}).has_value());
    expectOneReport({"\"0\" could not be used", "locked"});
    EXPECT_EQ(store.FillMessageIndexList("2").size(), 1u); // other folders still work
    other.exec("ROLLBACK");
    EXPECT_EQ(store.FillMessageIndexList("0").size(), 1u);

    writeAll(store.databasePath("0", "data.mdb"), QByteArray(4096, 'x')); // no database at all
    EXPECT_FALSE(store.readMessageRow("0", id).has_value());
    expectOneReport({"data.mdb"});
    EXPECT_EQ(store.FillMessageIndexList("2").size(), 1u);

    EXPECT_TRUE(store.FillMessageIndexList("Archive").empty());
    expectOneReport({"\"Archive\""});
    EXPECT_FALSE(QFileInfo::exists(store.databasePath("Archive", "index.mdb")));
}

} // namespace
