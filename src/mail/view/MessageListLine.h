#pragma once
#include <QByteArray>
#include <QStringList>
#include <array>

namespace mirel {

/// One line of the hidden message list (ID, Readed, Attachments, Subject,
/// From, Date, To joined by TAB) and the row of the visible list built from it.
struct MessageListLine {
    QByteArray id, readed, attachments, subject, from, date, to;

    /// Splits at TAB; whatever follows the sixth TAB is the recipient.
    static MessageListLine parse(QByteArrayView line);

    qint32 messageId() const;
    bool isRead() const;
    bool hasAttachments() const;

    /// The same line with "1" as its second field; a read line stays as it is.
    static QByteArray markedRead(QByteArrayView line);

    /// A sender or recipient that begins with a double quote is shown as the
    /// text up to the next one (the display name); anything else as stored.
    static QByteArray displayName(QByteArrayView address);

    /// The nine columns of the visible row of a line, and whether it is
    /// read, without a copy of its fields: a folder's list builds thousands.
    /// The stored bytes are kept as received; encoded words in subject and
    /// names are decoded here, for the eye only.
    static QStringList columnsOf(QByteArrayView line, bool* read = nullptr);

    /// Column widths for a list of the given width: the marker column, four
    /// quarter columns and the narrow gaps between them.
    static std::array<int, 9> columnWidths(int listWidth);
};

} // namespace mirel
