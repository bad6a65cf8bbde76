#include "mail/store/OutgoingMessageStore.h"
#include "MailStoreFixture.h"

#include <QDir>
#include <QJsonArray>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class OutgoingMessageStoreTest : public MailStoreFixture {
protected:
    OutgoingMessageStore outgoing{store};

    void SetUp() override {
        MailStoreFixture::SetUp();
        QDir().mkpath(dir.file("files/sub folder"));
    }

    // One number read straight from a file of the outbox, not through the store.
    int sqlNumber(const char* file, const char* sql) {
        SQLite::Database db(store.databasePath("1", file).toStdString());
        SQLite::Statement st(db, sql);
        return st.executeStep() ? st.getColumn(0).getInt() : -1;
    }
};

// Catches CC/BCC lines written when empty or in the other order, and the
// sender's folder names sent along with an attachment.
TEST(OutgoingMessageRules, HeaderTextAndAttachmentNames) {
    const QJsonObject rows = jsonTestData("mail/outgoing-rules.json");
    for (const QJsonValue r : rows["headerText"].toArray())
        EXPECT_EQ(OutgoingMessageStore::headerText(r[0].toString().toLatin1(),
                                                   r[1].toString().toLatin1()),
                  r[2].toString().toLatin1());
    for (const QJsonValue r : rows["attachmentName"].toArray())
        EXPECT_EQ(OutgoingMessageStore::attachmentFilename(r[0].toString()),
                  r[1].toString().toLatin1())
            << r[0].toString().toStdString();
}

// From, subject, date, the CC line and one attachment's name and bytes going
// through are the whole-program compose test's. Catches: ";" left as a
// recipient separator (and inside a quoted name), attachments out of list
// order, a large file read short.
TEST_F(OutgoingMessageStoreTest, StoresRecipientsAndAttachmentsInListOrder) {
    const QByteArray binary = QByteArray("\x01\xFF", 2) + QByteArray(70000, '\0') + "end";
    writeAll(dir.file("files/sub folder/report.pdf"), binary);
    writeAll(dir.file("files/a.txt"), "first line\r\n");
    OutgoingMessage m;
    m.to = "ann@x.org;bob@y.net; \"Lee; Cy\" <cy@z.com>";
    m.attachments = {dir.file("files/sub folder/report.pdf"), dir.file("files/a.txt")};
    const auto result = outgoing.StoreOutgoingMessage(m, MailStore::kOutbox);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(store.readIndexRow("1", *result.id)->to,
              "ann@x.org,bob@y.net, \"Lee, Cy\" <cy@z.com>");
    const auto files = store.readAttachments("1", *result.id);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].data, binary);
    EXPECT_EQ(files[1].filename, "name=\"a.txt\"");
    EXPECT_TRUE(sink.shown.empty());
}

// Catches unset fields and empty bodies or files written as empty values
// instead of left NULL, as the files have always held them (the list would
// show blanks, not nothing).
TEST_F(OutgoingMessageStoreTest, UnsetFieldsAndEmptyBodiesStayNull) {
    writeAll(dir.file("files/empty.txt"), {});
    OutgoingMessage m;
    m.attachments = {dir.file("files/empty.txt")};
    ASSERT_TRUE(outgoing.StoreOutgoingMessage(m, MailStore::kOutbox).ok());
    EXPECT_EQ(sqlNumber("index.mdb", R"(SELECT ("Subject" IS NULL) + ("From" IS NULL) +
                                          ("Date" IS NULL) + ("To" IS NULL) FROM "Index")"),
              4);
    EXPECT_EQ(sqlNumber("data.mdb", "SELECT (Text IS NULL) + (Html IS NULL) FROM Message"), 2);
    EXPECT_EQ(sqlNumber("attachments.mdb", "SELECT Data IS NULL FROM Attachments"), 1);
}

// Catches an outgoing message stored in pieces: with the attachments file
// locked by another writer, the index row and body used to be committed on
// their own, leaving a message in the outbox that had lost its attachments;
// and a message lost, or a half-written attachment row left, when one
// attachment cannot be read.
TEST_F(OutgoingMessageStoreTest, ALockedFileStoresNothingAnUnreadableAttachmentTheRowsSoFar) {
    writeAll(dir.file("files/a.txt"), "kept");
    writeAll(dir.file("files/c.txt"), "never reached");
    OutgoingMessage m;
    m.text = "see the file";
    m.attachments = {dir.file("files/a.txt")};
    store.setBusyTimeout(50);
    {
        SQLite::Database holder(store.databasePath("1", "attachments.mdb").toStdString(),
                                SQLite::OPEN_READWRITE);
        holder.exec("BEGIN EXCLUSIVE");
        EXPECT_FALSE(outgoing.StoreOutgoingMessage(m, "1").id);
        EXPECT_TRUE(store.FillOutboxList().isEmpty());
        EXPECT_FALSE(store.readMessageRow("1", 1));
        EXPECT_FALSE(sink.shown.empty());
    }
    // Once the file is free, the same message goes in whole.
    const auto stored = outgoing.StoreOutgoingMessage(m, "1");
    ASSERT_TRUE(stored.ok());
    EXPECT_EQ(store.readAttachments("1", *stored.id).size(), 1u);

    for (const QString& bad : {dir.file("files/gone.txt"), dir.file("files/sub folder")}) {
        m.attachments = {dir.file("files/a.txt"), bad, dir.file("files/c.txt")};
        const auto result = outgoing.StoreOutgoingMessage(m, MailStore::kOutbox);
        ASSERT_TRUE(result.id) << bad.toStdString();
        EXPECT_TRUE(result.error.contains(bad)) << result.error.toStdString();
        EXPECT_EQ(store.readIndexRow("1", *result.id)->attachments, 1);
        const auto files = store.readAttachments("1", *result.id);
        ASSERT_EQ(files.size(), 1u);
        EXPECT_EQ(files[0].data, "kept");
    }
}

} // namespace
