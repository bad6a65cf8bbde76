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
// - A message is one atomic unit across the three files: its index row, its
//   message row, every attachment row and the index row's attachment count
//   are written, moved or deleted in one transaction of one connection that
//   has the other files attached. SQLite commits attached files together
//   (through its master journal) only in a rollback-journal mode, which is
//   the mode these files are created in; WAL would break it. After a crash
//   at any instant a message is wholly in its folder or wholly absent, and
//   after a move wholly in exactly one of the two; the next open of a file
//   rolls back what was not committed, so there is no start-up sweep.
// - A Writer groups many messages in one transaction (one sync per group
//   instead of per message); each message inside it is a savepoint, so one
//   that fails leaves the others of the group standing.
// - A failure (locked, missing or corrupt file, a full disk) ends that one
//   operation with a message through the MessageSink and touches no other
//   folder.
// - Folder set-up runs with errors ignored, as the rest of start-up: a
//   folder that cannot be made shows up later as a failing operation.
#include "mail/store/MailRows.h"
#include "platform/Clock.h"
#include "platform/MessageSink.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace mirel {

class IniHelpers;
class SqliteDb;
} // namespace mirel
namespace SQLite {
class Database;
}
namespace mirel {

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
    /// message row, one row per attachment and the attachment count, all or
    /// nothing, committed before it returns. Returns the new ID, or nothing
    /// when any of it could not be written (then nothing was).
    std::optional<qint32> createMessage(QByteArrayView folder, const NewIndexFields& fields,
                                        const MessageRow& bodies,
                                        const std::vector<AttachmentRow>& attachments);

    /// Adds one attachment row to a stored message without touching its
    /// count.
    bool addAttachment(QByteArrayView folder, qint32 id, const AttachmentRow& attachment);

    /// Removes the index, message and attachment rows of the message; a row
    /// missing in one database does not stop the others.
    bool DeleteMessage(QByteArrayView folder, qint32 id);
    /// Moves the message with all its rows in one transaction; returns its ID
    /// in the destination, or nothing when it was not there or the move
    /// failed (then it is still whole in the source).
    std::optional<qint32> MoveMessage(QByteArrayView from, QByteArrayView to, qint32 id);

    /// The index rows of a folder, most recently stored first (rows stored
    /// in the same second: the later one first). Their realDate is left
    /// unset. Empty on failure.
    std::vector<IndexRow> FillMessageIndexList(QByteArrayView folder);
    /// The same rows as their list lines (IndexRow::listLine), made straight
    /// from what the file holds: the hidden list of a screen needs nothing
    /// else of them.
    QList<QByteArray> FillMessageListLines(QByteArrayView folder);
    /// "From|ID" per message of the outbox, in stored order.
    QList<QByteArray> FillOutboxList();

    /// The "Headers" of the last n messages stored in the folder, newest
    /// first.
    QList<QByteArray> recentHeaders(QByteArrayView folder, int n);

    class Writer;

    std::optional<IndexRow> readIndexRow(QByteArrayView folder, qint32 id);
    std::optional<MessageRow> readMessageRow(QByteArrayView folder, qint32 id);
    std::vector<AttachmentRow> readAttachments(QByteArrayView folder, qint32 id);
    bool setReaded(QByteArrayView folder, qint32 id, qint16 readed);
    /// The rows readIndexRow (without the stored time) and readMessageRow
    /// give, the declared charsets, and the attachments' file name texts when
    /// the index counts any, read through one connection. Nothing when any file could not be read,
    /// and nothing is reported then: the reads one by one say which file failed.
    std::optional<ViewedRows> readForView(QByteArrayView folder, qint32 id);

private:
    /// The folder's index file with its data and attachments files attached
    /// as "data" and "att".
    std::unique_ptr<SqliteDb> openFolder(QByteArrayView folder);
    template <typename Fn> bool guarded(QByteArrayView folder, Fn&& fn);
    template <typename Reserve, typename Row>
    bool eachListRow(QByteArrayView folder, Reserve&& reserve, Row&& row);
    void report(QByteArrayView folder, const QString& file, const QString& reason);
    void createDatabase(QByteArrayView folder, const QString& fileName, const char* schema);

    QString m_programDir;
    const Clock& m_clock;
    MessageSink& m_messages;
    int m_busyTimeoutMs = 3000;
};

/// New messages of one folder written in one open transaction: visible to
/// others and durable together at commit(). Nothing holds the files between
/// a commit and the next add. The statements are prepared once per
/// transaction, not per message: a session stores thousands.
class MailStore::Writer {
public:
    /// Hands out the attachments of a message one at a time, so only one is
    /// held in memory; nothing when there are no more (or the next could not
    /// be had: the caller knows why).
    using AttachmentSource = std::function<std::optional<AttachmentRow>()>;
    struct Drawn {
        std::optional<qint32> id;
        int attachments = 0; // rows written
    };

    Writer(MailStore& store, QByteArrayView folder);
    /// Rolls back what was not committed.
    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    QByteArrayView folder() const { return m_folder; }
    /// Adds one whole message (as createMessage); nothing of it is written
    /// when it fails. Failures are reported once per group.
    std::optional<qint32> add(const NewIndexFields& fields, const MessageRow& bodies,
                              const std::vector<AttachmentRow>& attachments);
    /// Adds a message whose attachments are drawn from next until it has no
    /// more. An attachment that cannot be written ends the drawing: the
    /// message keeps the rows before it and its count says how many.
    Drawn addDrawn(const NewIndexFields& fields, const MessageRow& bodies,
                   const AttachmentSource& next);
    /// Makes every message added since the last commit durable. False when
    /// they are gone (a failed commit, or a failure that undid the group).
    bool commit();
    int pending() const { return m_pending; }

private:
    struct Prepared;
    template <typename Fn> auto inMessage(Fn&& fn) -> std::optional<decltype(fn())>;
    qint32 insertMessage(const NewIndexFields& fields, const MessageRow& bodies, qint32 count);
    void insertAttachment(qint32 id, const AttachmentRow& attachment);
    void close();
    void fail(const QString& file, const QString& reason);

    MailStore& m_store;
    QByteArray m_folder;
    std::unique_ptr<SqliteDb> m_db;
    std::unique_ptr<Prepared> m_st; // of m_db: goes first
    QString m_file;                 // the file the current step writes, for the report
    int m_pending = 0;
    bool m_lost = false;
    bool m_reported = false;
};

} // namespace mirel
