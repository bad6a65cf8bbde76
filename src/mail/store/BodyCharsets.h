#pragma once
// The character set each body of a received message declared in its own
// part. The message row keeps the bodies' bytes and the top-level headers
// only, and a multipart message declares nothing at the top, so without
// this the reader would guess. Kept in a table of its own beside the
// message rows; a message without an entry (stored before, composed here,
// moved) reads as it always did.
#include <QByteArray>
#include <QString>

namespace SQLite {
class Database;
}

namespace mirel {

class MailStore;

/// The declared charsets of a message's text and HTML bodies; empty: none.
struct BodyCharsets {
    QByteArray text, html;
    bool empty() const { return text.isEmpty() && html.isEmpty(); }

    /// Written in the transaction that writes the message row, on the
    /// connection that has the folder's data file attached as "data".
    static void write(SQLite::Database& d, qint32 id, const BodyCharsets& charsets);
    static BodyCharsets read(const MailStore& store, QByteArrayView folder, qint32 id);
};

} // namespace mirel
