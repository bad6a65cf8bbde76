#pragma once
// A composed message goes into the outbox as the record the sender reads
// back later: From, To, Subject and Date in the index row (each only when it
// is not empty, so an empty one keeps the field's default), the bodies and a
// block of extra header lines in the message row, and one attachment row per
// file, in the order of the compose window's list.
//
// Attachments are read from disk one at a time, each just before its row is
// written, so only one file is held in memory at once. When a file cannot be
// read or its row written, storing stops there: the rows written so far stay
// in the outbox (the message can be opened, fixed or deleted there), the
// attachment count is set to the rows that were written, and the caller is
// told which file failed and why. All of it is one transaction: a crash or a
// locked file leaves the whole message or none of it.
#include "mail/store/MailRows.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace mirel {

class MailStore;

/// What the compose window hands over; texts in Windows-1252.
struct OutgoingMessage {
    QByteArray html, text, to, from, subject, cc, bcc, date;
    /// Full paths of the files to attach, in list order.
    QStringList attachments;
};

/// StoreOutgoingMessage over a MailStore.
class OutgoingMessageStore {
public:
    static inline const QByteArray kMailerLine =
        QByteArrayLiteral("X-Mailer: TORVEX Terminal MIREL v2.0\r\n");

    struct Result {
        /// The message's ID; nothing when not even the index row could be
        /// written (the store has reported why).
        std::optional<qint32> id;
        /// Why an attachment was not stored, naming its file; empty when
        /// every attachment was.
        QString error;
        bool ok() const { return id.has_value() && error.isEmpty(); }
    };

    explicit OutgoingMessageStore(MailStore& store) : m_store(store) {}

    Result StoreOutgoingMessage(const OutgoingMessage& message, QByteArrayView folder);

    /// The recipient list with every ";" turned into ",".
    static QByteArray recipients(QByteArrayView to);
    /// The CC line, the BCC line (each only when given) and the mailer line.
    static QByteArray headerText(QByteArrayView cc, QByteArrayView bcc);
    /// name="file" for the file a path names, without its folders.
    static QByteArray attachmentFilename(const QString& path);

private:
    MailStore& m_store;
};

} // namespace mirel
