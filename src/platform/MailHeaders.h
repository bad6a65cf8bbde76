#pragma once
// Header text for outgoing mail. The program's text is Windows-1252 bytes;
// a header may carry only ASCII, so text with other bytes travels as RFC 2047
// encoded words ("=?windows-1252?Q?caf=E9?="), each at most 75 characters,
// folded onto continuation lines. In address lists only the display names
// are encoded: an address itself must stay as it is.
#include <QByteArray>
#include <QDateTime>
#include <QList>

namespace mirel {

/// One mailbox of an address list: the display name (quotes removed) and
/// the address.
struct Mailbox {
    QByteArray displayName, address;
    bool operator==(const Mailbox&) const = default;
};

/// Building blocks of the header lines of an outgoing message.
class MailHeaders {
  public:
    /// Unstructured text (Subject, custom headers): unchanged when it is
    /// printable ASCII, else encoded words.
    static QByteArray encodeText(QByteArrayView text);
    /// Splits at commas outside double quotes and angle brackets; empty
    /// entries are dropped. "Name <a@b>", "\"Name\" <a@b>" and "a@b" all read.
    static QList<Mailbox> parseAddressList(QByteArrayView list);
    /// A list as header text, display names quoted or encoded as needed.
    static QByteArray formatAddressList(const QList<Mailbox>& list);
    /// "Sun, 22 Nov 2026 20:44:00 +0100" with the time's own UTC offset.
    static QByteArray date(const QDateTime& when);
    /// A new unique "<...@domain>"; domain from the sender's address.
    static QByteArray messageId(QByteArrayView senderAddress, const QDateTime& when);
};

} // namespace mirel
