#include "mail/store/MailRows.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace mirel {

QByteArray IndexRow::listLine() const {
    return listLine(id, readed, attachments, subject, from, date, to);
}

QByteArray IndexRow::listLine(qint32 id, qint16 readed, qint32 attachments, QByteArrayView subject,
                              QByteArrayView from, QByteArrayView date, QByteArrayView to) {
    // Ten thousand lines per folder: sized first and written in place.
    char numbers[3][16];
    qsizetype numberSizes[3];
    const qint32 values[3] = {id, qint32(readed), attachments};
    for (int k = 0; k < 3; ++k)
        numberSizes[k] =
            std::to_chars(numbers[k], numbers[k] + sizeof numbers[k], values[k]).ptr - numbers[k];
    const QByteArrayView fields[] = {subject, from, date, to};
    qsizetype size = 6;
    for (int k = 0; k < 3; ++k)
        size += numberSizes[k];
    for (QByteArrayView field : fields)
        size += field.size();
    QByteArray line(size, Qt::Uninitialized);
    char* o = line.data();
    for (int k = 0; k < 3; ++k) {
        if (k > 0)
            *o++ = '\t';
        o = std::copy(numbers[k], numbers[k] + numberSizes[k], o);
    }
    for (QByteArrayView field : fields) {
        *o++ = '\t';
        if (!field.isEmpty())
            memcpy(o, field.data(), size_t(field.size()));
        // A TAB of a folded header would shift the columns. Few fields have
        // one, so they are looked for after a plain copy.
        for (char *tab = o, *end = o + field.size();
             (tab = static_cast<char*>(memchr(tab, '\t', size_t(end - tab)))) != nullptr;)
            *tab = ' ';
        o += field.size();
    }
    return line;
}

} // namespace mirel
