#pragma once
// The mail store: one directory per mail folder under the mail root
// (ProgramDir + "\Email\"), each holding three single-table databases,
// "index.mdb" (table Index), "data.mdb" (table Message) and
// "attachments.mdb" (table Attachments).
//
// Invariants:
// - A message is keyed in its folder by the ID the Index table hands out
//   (auto-increment, never reused); its Message row and all its Attachments
//   rows carry the same ID. IDs of different folders are unrelated, and a
//   move hands out a new one in the destination.
// - Nothing stays open between operations: each operation opens the files
//   it needs and closes them before it returns.
// - Byte strings (Windows-1252) go in and come out unchanged: every text
//   field is written as a BLOB. An empty body is left NULL, not written.
// - A failure (locked, missing or corrupt file) ends that one operation with
//   a message through the MessageSink and touches no other folder. Moves
//   commit database by database, so a failure halfway leaves the rows of
//   the databases not yet moved in the source folder.
// - Folder set-up runs with errors ignored, as the rest of start-up: a
//   folder that cannot be made shows up later as a failing operation.
#include "mail/store/MailRows.h"
#include "platform/Clock.h"
#include "platform/MessageSink.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace mirel {

class IniHelpers;
class SqliteDb;

/// Folders and records of the mail store.
class MailStore {
  public:
    static inline const QByteArray kInbox = QByteArrayLiteral("0");
    static inline const QByteArray kOutbox = QByteArrayLiteral("1");
    static inline const QByteArray kSent = QByteArrayLiteral("2");
    static inline const QByteArray kDeleted = QByteArrayLiteral("3");
    /// The blank page the viewer shows when no message is open.
    static inline const QByteArray kBlankPage =
        QByteArrayLiteral("<HTML><HEAD><TITLE>TORVEX Terminal - Mirel</TITLE></HEAD><BODY "
                          "BGCOLOR=#000000></BODY></HTML>\r\n");
    /// Text fields of the index and the attachment file name hold at most
    /// this many characters.
    static constexpr qsizetype kTextFieldSize = 255;

    MailStore(QString programDir, const Clock& clock, MessageSink& messages);

    /// How long an operation waits for a lock another program holds.
    void setBusyTimeout(int ms) { m_busyTimeoutMs = ms; }

    /// Makes the fixed folders and "EmailTemp" ready, writes the blank page
    /// and returns the account records of "accounts.ini" (section "Email",
    /// keys "0", "1", … up to the first missing one) as they are written.
    QList<QByteArray> MailStoreStartup(IniHelpers& ini);

    /// ProgramDir + "\Email\", with a trailing separator.
    QString mailRoot() const;
    QString folderDir(QByteArrayView folder) const;
    QString databasePath(QByteArrayView folder, const QString& fileName) const;
    QString blankPagePath() const { return mailRoot() + QStringLiteral("torvex-terminal.html"); }
    QString incomingRecordPath() const { return mailRoot() + QStringLiteral("incomming.ini"); }
    QString tempDir() const;

    /// Each creates its database only when the file is missing or empty;
    /// errors are ignored.
    void CreateDataDatabase(QByteArrayView folder);
    void CreateIndexDatabase(QByteArrayView folder);
    void CreateAttachmentsDatabase(QByteArrayView folder);

    /// Writes a whole new message: the index row (RealDate = now), the
    /// message row, one row per attachment and the attachment count. Returns
    /// the new ID, or nothing when the index row could not be written. A
    /// later failure leaves the rows written so far.
    std::optional<qint32> createMessage(QByteArrayView folder, const NewIndexFields& fields,
                                        const MessageRow& bodies,
                                        const std::vector<AttachmentRow>& attachments);

    /// Adds one attachment row to a stored message without touching its
    /// count, for callers that gather the attachments one at a time.
    bool addAttachment(QByteArrayView folder, qint32 id, const AttachmentRow& attachment);
    /// Sets the index row's attachment count.
    bool setAttachmentCount(QByteArrayView folder, qint32 id, qint32 count);

    /// Removes the index, message and attachment rows of the message; a row
    /// missing in one database does not stop the others.
    bool DeleteMessage(QByteArrayView folder, qint32 id);
    /// Moves the message with all its rows; returns its ID in the
    /// destination, or nothing when it was not there or the move failed.
    std::optional<qint32> MoveMessage(QByteArrayView from, QByteArrayView to, qint32 id);

    /// The index rows of a folder, most recently stored first (rows stored
    /// in the same second: the later one first). Empty on failure.
    std::vector<IndexRow> FillMessageIndexList(QByteArrayView folder);
    /// "From|ID" per message of the outbox, in stored order.
    QList<QByteArray> FillOutboxList();

    std::optional<IndexRow> readIndexRow(QByteArrayView folder, qint32 id);
    std::optional<MessageRow> readMessageRow(QByteArrayView folder, qint32 id);
    std::vector<AttachmentRow> readAttachments(QByteArrayView folder, qint32 id);
    bool setReaded(QByteArrayView folder, qint32 id, qint16 readed);

  private:
    template <typename Fn> bool guarded(QByteArrayView folder, Fn&& fn);
    void report(QByteArrayView folder, const QString& file, const QString& reason);
    void createDatabase(QByteArrayView folder, const QString& fileName, const char* schema);
    qint32 insertIndexRow(SqliteDb& db, const IndexRow& row, const NewIndexFields& fields);

    QString m_programDir;
    const Clock& m_clock;
    MessageSink& m_messages;
    int m_busyTimeoutMs = 3000;
};

} // namespace mirel
