#pragma once
// The character set each body of a received message declared in its own
// part. The message row keeps the bodies' bytes and the top-level headers
// only, and a multipart message declares nothing at the top, so without
// this the reader would guess. Kept in a table of its own beside the
// message rows; a message without an entry (stored before, composed here,
// moved) reads as it always did.
#include <QByteArray>
#include <QString>
#include <memory>
#include <string>

namespace SQLite {
class Database;
class Statement;
} // namespace SQLite

namespace mirel {

class MailStore;

/// The declared charsets of a message's text and HTML bodies; empty: none.
struct BodyCharsets {
    QByteArray text, html;
    bool empty() const { return text.isEmpty() && html.isEmpty(); }

    /// Written in the transaction that writes the message row, on the
    /// connection that has the folder's data file attached as "data". The
    /// statement is made on the first message that declares a charset (the
    /// table appears then, not before) and kept for the rest of the
    /// transaction.
    static void write(SQLite::Database& d, std::unique_ptr<SQLite::Statement>& insert, qint32 id,
                      const BodyCharsets& charsets);
    static BodyCharsets read(const MailStore& store, QByteArrayView folder, qint32 id);
    /// The same, on a connection that has the data file open as schema
    /// ("main" when it is the file opened, else its attached name).
    static BodyCharsets read(SQLite::Database& d, const std::string& schema, qint32 id);
};

} // namespace mirel
