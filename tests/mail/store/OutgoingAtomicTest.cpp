// Catches an outgoing message stored in pieces: with the attachments file
// locked by another writer, the index row and body used to be committed on
// their own, leaving a message in the outbox that had lost its attachments.
#include "MailStoreFixture.h"
#include "mail/store/OutgoingMessageStore.h"

#include <SQLiteCpp/Database.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class OutgoingAtomicTest : public MailStoreFixture {};

TEST_F(OutgoingAtomicTest, ALockedAttachmentsFileStoresNothingOfTheMessage) {
    writeAll(dir.file("report.txt"), "attached");
    OutgoingMessage m;
    m.subject = "with a file";
    m.text = "see the file";
    m.attachments = {dir.file("report.txt")};
    store.setBusyTimeout(50);
    {
        SQLite::Database holder(store.databasePath("1", "attachments.mdb").toStdString(),
                                SQLite::OPEN_READWRITE);
        holder.exec("BEGIN EXCLUSIVE");
        EXPECT_FALSE(OutgoingMessageStore(store).StoreOutgoingMessage(m, "1").id);
        EXPECT_TRUE(store.FillOutboxList().isEmpty());
        EXPECT_FALSE(store.readMessageRow("1", 1));
        EXPECT_FALSE(sink.shown.empty());
    }
    // Once the file is free, the same message goes in whole.
    const auto stored = OutgoingMessageStore(store).StoreOutgoingMessage(m, "1");
    ASSERT_TRUE(stored.ok());
    EXPECT_EQ(store.readIndexRow("1", *stored.id)->attachments, 1);
    EXPECT_EQ(store.readAttachments("1", *stored.id).size(), 1u);
}

} // namespace
