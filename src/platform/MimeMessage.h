#pragma once
// A received message as the mail code reads it, parsed once by GMime and
// kept as plain values so no GMime object outlives the parse:
// - the header lines of the message in the order they were written (GMime
//   keeps the Content-* lines of the top part in the part's own list; both
//   lists are merged back by their offsets), unfolded, without line breaks;
// - the part tree, each entity with its media type, the transfer encoding
//   exactly as written, the parameter text of its Content-Type header and
//   its body as transmitted;
// - the body of the whole message as fetched: everything after the blank
//   line that ends the header block.
// The tree is cut at a given depth: a container at the cut is a leaf whose
// body is its content as transmitted. Nothing here changes a byte of the
// message; decoding is asked for explicitly.
#include <QByteArray>
#include <QList>
#include <vector>

namespace mirel {

/// One entity of the part tree.
struct MimeEntity {
    QByteArray type = QByteArrayLiteral("text"); // lower case
    QByteArray subtype = QByteArrayLiteral("plain");
    QByteArray transferEncoding; // as written, without surrounding blanks
    QByteArray typeParameters;   // the Content-Type text after the first ";"
    QByteArray rawBody;          // as transmitted, line breaks included
    std::vector<MimeEntity> parts;
    /// Read from the headers for the reader's sake, never written back:
    QByteArray disposition; // "attachment", "inline" (lower case) or empty
    QByteArray fileName;    // Content-Type name, else Content-Disposition filename; UTF-8
    QByteArray charset;     // the declared charset, lower case; empty when none

    /// The body decoded by its transfer encoding (any letter case); the raw
    /// body when it names none.
    QByteArray decodedBody() const;
};

/// A parsed message; parsing never fails, a message that is not MIME is a
/// single text/plain entity.
class MimeMessage {
public:
    /// Levels of containers opened below the message itself.
    static constexpr int kDefaultDepth = 2;

    /// How a parsed message holds the bytes of its bodies.
    enum class Bytes {
        Copied,
        /// Each body is a window on raw, which must outlive the message,
        /// and body() stays empty: for a caller that stores the message
        /// and lets it go, sparing a copy of every byte.
        Borrowed
    };

    static MimeMessage parse(QByteArrayView raw, int depth = kDefaultDepth,
                             Bytes bytes = Bytes::Copied);

    const QList<QByteArray>& headerLines() const { return m_headerLines; }
    /// The value of the first header of that name (any letter case), without
    /// the blanks after the colon; empty when there is none.
    QByteArray header(QByteArrayView name) const;
    QByteArray subject() const { return header("Subject"); }
    QByteArray sender() const { return header("From"); }
    QByteArray recipient() const { return header("To"); }
    QByteArray date() const { return header("Date"); }

    const MimeEntity& root() const { return m_root; }
    /// Everything after the blank line that ends the header block; empty
    /// when the message has no such line.
    const QByteArray& body() const { return m_body; }

    /// Where the header block ends and the body begins in raw.
    static qsizetype bodyOffset(QByteArrayView raw);

private:
    QList<QByteArray> m_headerLines;
    MimeEntity m_root;
    QByteArray m_body;
};

} // namespace mirel
