#include "mail/view/MessageListLine.h"

#include "mail/mime/MailDisplayText.h"
#include "settings/CommaList.h"

namespace mirel {

namespace {

// Most headers are plain ASCII without encoded words; they read the same
// without the decoder, which a folder of thousands of rows notices.
QString shown(QByteArrayView value) {
    const qsizetype n = value.size();
    for (qsizetype i = 0; i < n; ++i)
        if (uchar(value[i]) >= 0x80 || (value[i] == '=' && i + 1 < n && value[i + 1] == '?'))
            return MailDisplayText::decodeHeader(value);
    return QString::fromLatin1(value);
}

// The name as a view into the address: the list shows it without keeping it.
QByteArrayView nameOf(QByteArrayView address) {
    if (!address.startsWith('"'))
        return address;
    const qsizetype close = address.indexOf('"', 1);
    // An unclosed quote: the rest of the text is the name.
    return close < 0 ? address.sliced(1) : address.sliced(1, close - 1);
}

} // namespace

MessageListLine MessageListLine::parse(QByteArrayView line) {
    MessageListLine l;
    QByteArray* fields[] = {&l.id, &l.readed, &l.attachments, &l.subject, &l.from, &l.date};
    qsizetype start = 0;
    for (QByteArray* field : fields) {
        const qsizetype tab = line.indexOf('\t', start);
        if (tab < 0) {
            *field = line.sliced(start).toByteArray();
            return l;
        }
        *field = line.sliced(start, tab - start).toByteArray();
        start = tab + 1;
    }
    l.to = line.sliced(start).toByteArray();
    return l;
}

qint32 MessageListLine::messageId() const {
    return qint32(leadingNumber(id));
}

bool MessageListLine::isRead() const {
    return leadingNumber(readed) > 0;
}

bool MessageListLine::hasAttachments() const {
    return leadingNumber(attachments) > 0;
}

QByteArray MessageListLine::markedRead(QByteArrayView view) {
    const QByteArray line = view.toByteArray();
    const qsizetype first = line.indexOf('\t');
    if (first < 0)
        return line + "\t1";
    const qsizetype second = line.indexOf('\t', first + 1);
    const qsizetype end = second < 0 ? line.size() : second;
    return line.left(first + 1) + '1' + line.mid(end);
}

QByteArray MessageListLine::displayName(QByteArrayView address) {
    return nameOf(address).toByteArray();
}

QStringList MessageListLine::columns() const {
    return {hasAttachments() ? QStringLiteral("*") : QStringLiteral(" "),
            QString(),
            shown(nameOf(from)),
            QString(),
            shown(subject),
            QString(),
            shown(date),
            QString(),
            shown(nameOf(to))};
}

std::array<int, 9> MessageListLine::columnWidths(int listWidth) {
    const int quarter = qMax(0, (listWidth - 30) / 4);
    return {10, 5, quarter, 5, quarter, 5, quarter, 5, quarter};
}

} // namespace mirel
