#pragma once
// Storing one received message: the duplicate check, then a walk of the part tree at most two
// levels deep that keeps the first text/plain body and the first text/html body and turns every
// other part into an attachment; then the whole message is written as one unit and, once it is
// stored, recorded as received.
//
// Grouped, the messages collect in one transaction until commit(), which
// makes them durable and then records them; a failed commit forgets their
// records, so every one of them is fetched again. Not grouped, each store()
// commits before it returns.
//
// Rules the walk keeps:
// - A part is decoded only when its Content-Transfer-Encoding is written
//   exactly "quoted-printable", "base64", "mac-binhex40" or "x-uuencode";
//   any other spelling, letter case included, keeps the body as transmitted.
// - A second text/plain (or text/html) part is dropped, not stored; a text
//   part that is an attachment or has a file name is an attachment.
// - An attachment's stored parameter text starts with its decoded name as
//   name="..." when it is not written so already.
// - A container below the second level is not opened; it is stored as one
//   attachment with its content as transmitted.
// - Subject, From and To are cut to 255 characters, then trimmed of blanks;
//   Date is kept as delivered. Bytes are stored as received: no character
//   set is applied anywhere; the charsets the body parts declare are kept
//   beside them for the reader.
#include "mail/store/BodyCharsets.h"
#include "mail/store/MailRows.h"
#include "mail/store/MailStore.h"
#include "platform/MimeMessage.h"

#include <QByteArray>
#include <memory>
#include <vector>

namespace mirel {

class DuplicateDetector;

/// StoreReceivedMessage and StoreMessagePart over a MailStore.
class ReceivedMessageStore {
public:
    enum class Result { Stored, Duplicate, Failed };

    /// A receiving session commits its group after this many messages, or
    /// once this long has passed since its last commit. A commit costs a
    /// dozen syncs across the three files, so it is paid per second rather
    /// than per few hundred messages; the time keeps the window's own writes
    /// to the folder (marking a message read) from waiting long.
    static constexpr int kGroupMessages = 2000;
    static constexpr qint64 kGroupMs = 1000;

    ReceivedMessageStore(MailStore& store, DuplicateDetector& duplicates);
    /// Commits what is stored and not yet committed.
    ~ReceivedMessageStore();

    void setGrouped(bool grouped) { m_grouped = grouped; }
    /// Makes every message stored since the last commit durable, then
    /// records it. False when none of them is stored after all.
    bool commit();

    /// True when the message was stored; false for a message received
    /// before (nothing is written) or one the store refused (reported).
    bool StoreReceivedMessage(QByteArrayView raw, QByteArrayView folder);
    Result store(const MimeMessage& mail, QByteArrayView folder);
    Result store(QByteArrayView raw, QByteArrayView folder);

    /// The ID of the message stored last.
    qint32 lastId() const { return m_lastId; }

    /// Whether a transfer encoding, as written, is one the walk decodes.
    static bool isEncoded(QByteArrayView transferEncoding);
    /// Cut to the index field's size, then trimmed of blanks.
    static QByteArray indexText(QByteArrayView value);
    /// The parameter text an attachment is stored with.
    static QByteArray attachmentFilename(const MimeEntity& part);

private:
    /// body: the message's body as fetched, which its record may be keyed by.
    Result store(const MimeMessage& mail, QByteArrayView body, QByteArrayView folder);
    void StoreMessagePart(const MimeEntity& part);

    MailStore& m_store;
    DuplicateDetector& m_duplicates;
    std::unique_ptr<MailStore::Writer> m_writer;
    bool m_grouped = false;
    // Working state of the message being stored.
    QByteArray m_text;
    QByteArray m_html;
    BodyCharsets m_charsets;
    std::vector<AttachmentRow> m_attachments;
    qint32 m_lastId = 0;
};

} // namespace mirel
