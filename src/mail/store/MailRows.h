#pragma once
#include "mail/store/BodyCharsets.h"

#include <QByteArray>
#include <QDateTime>
#include <optional>
#include <vector>

namespace mirel {

/// One row of a folder's message index, as plain values.
struct IndexRow {
    qint32 id = 0;
    QByteArray subject, from, date, to;
    qint32 attachments = 0;
    qint16 readed = 0;
    QDateTime realDate;

    /// ID, Readed, Attachments, Subject, From, Date, To joined by TAB: the
    /// hidden line the message list is built from.
    QByteArray listLine() const;
    static QByteArray listLine(qint32 id, qint16 readed, qint32 attachments, QByteArrayView subject,
                               QByteArrayView from, QByteArrayView date, QByteArrayView to);
};

/// The fields of a new index row. A field left unset is not written, so it
/// keeps its default; received mail sets all four, composed mail only the
/// ones it has.
struct NewIndexFields {
    std::optional<QByteArray> subject, from, date, to;
};

/// The bodies and header text of one message; an empty value is left
/// unassigned in the store.
struct MessageRow {
    qint32 id = 0;
    QByteArray text, html, headers;
    /// What the bodies' own parts declared (received mail only); kept
    /// beside the row, not in it.
    QByteArray textCharset, htmlCharset;
};

/// One attachment as stored: the Content-Type parameter text and the bytes.
struct AttachmentRow {
    QByteArray filename;
    QByteArray data;
};

/// What the message view reads of one message: its rows in the three files,
/// the charsets its bodies declared (empty: none), and the stored file name
/// texts of its attachments, in stored order, without their bytes.
struct ViewedRows {
    std::optional<MessageRow> message;
    std::optional<IndexRow> index;
    BodyCharsets charsets;
    std::vector<QByteArray> attachmentNames;
};

} // namespace mirel
