#pragma once
// How a message stored in the outbox becomes what the SMTP client sends.
// The outbox keeps From, To and Subject in the index row, the bodies and a
// block of further header lines in the message row, and the attachment
// files in their own rows. The further header lines carry the copy lists:
// "Cc" and "Bcc" (any case) become the copy and blind-copy recipients, every
// other line a header of its own; a "To" line there holds the whole list
// when the index row could keep only its start. Commas inside double quotes belong to a
// display name, so they are turned into spaces before any list is split.
#include "mail/transport/EmailAccountList.h"
#include "platform/OutgoingMail.h"

namespace mirel {

/// The outbox's stored fields in, an OutgoingMail out; and which account sends.
class OutboxMessage {
public:
    struct Stored {
        QByteArray from, to, subject;   // index row
        QByteArray text, html, headers; // message row
        QList<OutgoingMail::Attachment> attachments;
    };

    /// Every comma between a pair of double quotes becomes a space.
    static QByteArray spaceQuotedCommas(QByteArrayView list);
    /// Reads the stored header block line by line (lines end at CR; an LF
    /// after it is skipped). Stops at an empty line and ignores a last line
    /// without a line end. A line without a colon is no header and is skipped.
    static void readStoredHeaders(QByteArrayView block, QByteArray& cc, QByteArray& bcc,
                                  QList<std::pair<QByteArray, QByteArray>>& others);
    static OutgoingMail toOutgoing(const Stored& stored);
    /// Every line end (CR, LF or CR LF) as CR LF, as SMTP wants it.
    static QByteArray crlf(QByteArrayView body);

    /// The sender text an account writes into From: "\"" name "\" <" address ">".
    static QByteArray senderKey(QByteArrayView record);
    /// The first account whose sender text equals from exactly; when none
    /// does, the last account (*matched false); -1 for an empty list.
    static qsizetype sendingAccount(const EmailAccountList& accounts, QByteArrayView from,
                                    bool* matched = nullptr);
};

} // namespace mirel
