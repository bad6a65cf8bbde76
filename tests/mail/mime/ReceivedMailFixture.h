#pragma once
// A mail store in a temporary folder with its duplicate record, and a way to
// store one raw message and read back every row it produced.
#include "TestSupport.h"
#include "mail/mime/ReceivedMessageStore.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <QFile>
#include <gtest/gtest.h>

namespace mirel::test {

class ReceivedMailFixture : public ::testing::Test {
protected:
    TempDir dir;
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(10, 0))};
    RecordingMessageSink sink;
    SettingsStore settings{dir.file("config")};
    IniHelpers ini{sink, settings};
    MailStore store{dir.path(), clock, sink};
    DuplicateDetector duplicates{store.incomingRecordPath()};
    ReceivedMessageStore received{store, duplicates};

    void SetUp() override { store.MailStoreStartup(ini); }

    /// An empty record: every message is new again.
    void forgetReceived() {
        QFile::remove(store.incomingRecordPath());
        duplicates = DuplicateDetector(store.incomingRecordPath());
    }

    struct Rows {
        IndexRow index;
        MessageRow message;
        std::vector<AttachmentRow> attachments;
    };
    Rows storeMail(const QByteArray& raw) {
        EXPECT_EQ(received.store(raw, "0"), ReceivedMessageStore::Result::Stored);
        const qint32 id = received.lastId();
        return {store.readIndexRow("0", id).value_or(IndexRow{}),
                store.readMessageRow("0", id).value_or(MessageRow{}),
                store.readAttachments("0", id)};
    }
};

} // namespace mirel::test
