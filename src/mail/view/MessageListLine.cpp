#include "mail/view/MessageListLine.h"

#include "mail/mime/MailDisplayText.h"
#include "settings/CommaList.h"

#include <cstring>

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

// The seven fields of a line where they stand: ID, Readed, Attachments,
// Subject, From, Date and To. Splits at TAB; whatever follows the sixth TAB
// is the recipient, and fields a short line lacks are empty.
std::array<QByteArrayView, 7> split(QByteArrayView line) {
    std::array<QByteArrayView, 7> fields;
    const char* start = line.data();
    const char* const end = start + line.size();
    for (size_t k = 0; k < 6; ++k) {
        const auto* tab = start == end
                              ? nullptr
                              : static_cast<const char*>(memchr(start, '\t', size_t(end - start)));
        if (!tab) {
            fields[k] = QByteArrayView(start, end - start);
            return fields;
        }
        fields[k] = QByteArrayView(start, tab - start);
        start = tab + 1;
    }
    fields[6] = QByteArrayView(start, end - start);
    return fields;
}

} // namespace

MessageListLine MessageListLine::parse(QByteArrayView line) {
    const std::array<QByteArrayView, 7> f = split(line);
    return {f[0].toByteArray(), f[1].toByteArray(), f[2].toByteArray(), f[3].toByteArray(),
            f[4].toByteArray(), f[5].toByteArray(), f[6].toByteArray()};
}

QStringList MessageListLine::columnsOf(QByteArrayView line, bool* read) {
    const std::array<QByteArrayView, 7> f = split(line);
    if (read)
        *read = leadingNumber(f[1]) > 0;
    return {leadingNumber(f[2]) > 0 ? QStringLiteral("*") : QStringLiteral(" "),
            QString(),
            shown(nameOf(f[4])),
            QString(),
            shown(f[3]),
            QString(),
            shown(f[5]),
            QString(),
            shown(nameOf(f[6]))};
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

std::array<int, 9> MessageListLine::columnWidths(int listWidth) {
    const int quarter = qMax(0, (listWidth - 30) / 4);
    return {10, 5, quarter, 5, quarter, 5, quarter, 5, quarter};
}

} // namespace mirel
