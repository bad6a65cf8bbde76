#pragma once
// The ground the mail tests stand on: a mail store in a fresh program folder
// with its fixed folders made, a settings store and a recording sink; and for
// received mail, the duplicate record and a way to store one raw message and
// read back every row it produced.
#include "TestSupport.h"
#include "mail/mime/ReceivedMessageStore.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"
#include "platform/Clock.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace mirel::test {

/// A table of cases kept in tests/data: a JSON object whose rows are arrays;
/// strings stand for bytes, one character each (\u00e9 is the byte E9).
inline QJsonObject jsonTestData(const QString& relative) {
    return QJsonDocument::fromJson(readAll(testData(relative))).object();
}

class MailStoreFixture : public ::testing::Test {
protected:
    TempDir dir;
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(21, 30, 5))};
    RecordingMessageSink sink;
    SettingsStore settings{dir.file("config")};
    IniHelpers ini{sink, settings};
    MailStore store{root(), clock, sink};

    void SetUp() override {
        QDir().mkpath(root());
        store.MailStoreStartup(ini);
    }
    /// A path inside the program folder.
    QString root(const QString& relative = {}) const { return dir.file("prog/" + relative); }
    /// Stores a message from Ann with the given subject, one second after the
    /// one before; its ID.
    qint32 addMessage(QByteArrayView folder, const QByteArray& subject,
                      const std::vector<AttachmentRow>& attachments = {}, MessageRow bodies = {}) {
        const auto id = store.createMessage(
            folder, {subject, "Ann <a@x.org>", "Sun, 22 Nov 2026 10:00:00 +0100", "b@y.net"},
            bodies, attachments);
        EXPECT_TRUE(id.has_value());
        clock.advanceSeconds(1);
        return id.value_or(-1);
    }
};

class ReceivedMailFixture : public MailStoreFixture {
protected:
    DuplicateDetector duplicates{store.incomingRecordPath()};
    ReceivedMessageStore received{store, duplicates};

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
