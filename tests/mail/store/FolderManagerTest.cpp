// User folders, the commands on selected messages and attachment files, on
// real folders and databases.
#include "mail/store/FolderManager.h"
#include "MailStoreFixture.h"
#include "mail/store/AttachmentFile.h"
#include "mail/store/MailStore.h"
#include "mail/view/SelectedMessages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

struct MailFolders : MailStoreFixture {
    FolderManager folders{store, sink};

    QString mail() const { return root("Email/"); }
    // The folder's list lines after one more message, newest first.
    QList<QByteArray> add(QByteArrayView folder, QByteArray subject, int attachments) {
        addMessage(folder, subject,
                   std::vector<AttachmentRow>(size_t(attachments), {"a", subject}));
        QList<QByteArray> lines;
        for (const IndexRow& r : store.FillMessageIndexList(folder))
            lines.append(r.listLine());
        return lines;
    }
};

// Catches: a name that leaves the mail root or takes a fixed folder's place,
// a "\" read as a path separator (the folder would land one level down), a
// user folder missed for the case of its name, and a move onto itself that
// duplicates the message.
TEST_F(MailFolders, NamesAreOneDirectoryUnderTheRoot) {
    for (const char* bad : {"", "   ", ".", "..", "a/b", "../x", "0", "3", " 2 "})
        EXPECT_TRUE(folders.create(bad).isEmpty()) << bad;
    EXPECT_TRUE(folders.create(QByteArray("a\0b", 3)).isEmpty());
    EXPECT_EQ(sink.shown.size(), 10u);
    EXPECT_EQ(QDir(mail()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 4);

    for (const QByteArray good : {"Work", " Trips ", "\xC4rger", "a\\b"})
        EXPECT_FALSE(folders.create(good).isEmpty()) << good.constData();
    EXPECT_EQ(folders.userFolders(), (QList<QByteArray>{"a\\b", "Trips", "Work", "\xC4rger"}));
    EXPECT_TRUE(QFileInfo(mail() + QString::fromUtf8("Ärger/data.mdb")).size() > 0);
    add("0", "m", 1);
    ASSERT_TRUE(store.MoveMessage("0", "a\\b", 1).has_value());
    EXPECT_EQ(store.readAttachments("a\\b", 1).size(), 1u);
    EXPECT_FALSE(QFileInfo::exists(mail() + "a"));

    // An existing folder keeps its mail; a folder is found whatever the case
    // of its name, also by a move onto itself.
    EXPECT_TRUE(folders.create("a\\b").isEmpty());
    EXPECT_EQ(store.FillMessageIndexList("a\\b").size(), 1u);
    const qint32 id = addMessage("WORK", "kept");
    EXPECT_EQ(store.MoveMessage("Work", "work", id), id);
    EXPECT_EQ(store.FillMessageIndexList("wORK").size(), 1u);
}

// Catches: a rename over another folder, a delete that leaves databases or
// journals behind, or that follows a link out of the mail root.
TEST_F(MailFolders, RenameAndDeleteTouchOnlyTheirFolder) {
    folders.create("A");
    folders.create("B");
    sink.shown.clear();
    EXPECT_TRUE(folders.rename("A", "B").isEmpty());
    EXPECT_TRUE(folders.rename("A", "1").isEmpty());
    EXPECT_EQ(sink.shown.size(), 2u);
    EXPECT_EQ(folders.rename("A", "C"), "C");
    EXPECT_EQ(folders.userFolders(), (QList<QByteArray>{"B", "C"}));

    writeAll(mail() + "C/data.mdb-journal", "j");
    EXPECT_TRUE(folders.remove("C"));
    EXPECT_FALSE(QFileInfo::exists(mail() + "C"));

    writeAll(mail() + "B/notes.txt", "mine");
    EXPECT_TRUE(folders.remove("B"));
    EXPECT_EQ(QDir(mail() + "B").entryList(QDir::Files), QStringList{"notes.txt"});

    QDir().mkpath(dir.file("outside"));
    writeAll(dir.file("outside/data.mdb"), "keep");
    QFile::link(dir.file("outside"), mail() + "L");
    EXPECT_FALSE(folders.remove("L"));
    EXPECT_TRUE(QFileInfo::exists(dir.file("outside/data.mdb")));
}

// Deleting (into "Deleted", then for good) is the folder screen's and the
// whole-program test's, attachments left behind the store test's. Catches:
// rows walked in the order they were chosen (a row after a moved one is
// skipped), and a walk that goes on past a target it cannot write to.
TEST_F(MailFolders, SelectedMessagesMoveInListOrderAndStopAtABrokenTarget) {
    QList<QByteArray> inbox;
    for (int i = 0; i < 4; ++i)
        inbox = add("0", "m" + QByteArray::number(i), i % 2 + 1); // newest first: m3 m2 m1 m0
    folders.create("Work");
    EXPECT_EQ(SelectedMessages(store, "", inbox).move({2, 0, 1}, "Work"), (QList<int>{0, 1, 2}));
    ASSERT_EQ(inbox.size(), 1);
    EXPECT_TRUE(inbox[0].startsWith("1\t"));
    EXPECT_EQ(store.FillMessageIndexList("Work").size(), 3u);

    QFile::remove(mail() + "Work/attachments.mdb");
    inbox.append("2\t0\t0");
    sink.shown.clear();
    EXPECT_TRUE(SelectedMessages(store, "0", inbox).move({0, 1}, "Work").isEmpty());
    EXPECT_EQ(inbox.size(), 2);
    EXPECT_EQ(sink.shown.size(), 1u);
}

// Catches: a proposed name that leads out of the chosen folder, a filter
// built from a leading dot, and an old longer file keeping its tail.
TEST_F(MailFolders, AttachmentFiles) {
    for (const auto& r : readTable("tables/attachment-names.txt")) {
        EXPECT_EQ(AttachmentFile::proposedName(r[0]), r[1]) << r[0].constData();
        EXPECT_EQ(AttachmentFile::saveFilter(r[0]), r[2]) << r[0].constData();
    }

    const QByteArray data = QByteArray("\0\x07\xFF", 3).repeated(8400);
    writeAll(dir.file("out.bin"), QByteArray(40000, 'x'));
    int pieces = 0;
    EXPECT_TRUE(
        AttachmentFile::WriteAttachmentFile(data, dir.file("out.bin"), nullptr, [&] { ++pieces; }));
    EXPECT_EQ(pieces, 3);
    EXPECT_EQ(readAll(dir.file("out.bin")), data);
    QString error;
    EXPECT_FALSE(AttachmentFile::WriteAttachmentFile(data, dir.file("none/x"), &error));
    EXPECT_FALSE(error.isEmpty());
}

// Catches a fixed folder shown under its key, and a user folder taken for a
// fixed one.
TEST(FolderNamesTest, DisplayNamesAndKeys) {
    const FolderNames names({"In", "", "Sent", "Bin"});
    EXPECT_EQ(names.displayName("1"), "Outbox");
    EXPECT_EQ(names.displayName(""), "In");
    EXPECT_EQ(names.keyOf("Bin"), "3");
    EXPECT_EQ(names.keyOf("Work"), "Work");
}

} // namespace
