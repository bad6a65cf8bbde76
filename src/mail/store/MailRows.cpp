#include "mail/store/MailRows.h"

#include <algorithm>
#include <charconv>

namespace mirel {

QByteArray IndexRow::listLine() const {
    QByteArray line;
    line.reserve(32 + subject.size() + from.size() + date.size() + to.size());
    char digits[16];
    for (const qint32 n : {id, qint32(readed), attachments}) {
        if (!line.isEmpty())
            line += '\t';
        line.append(digits, std::to_chars(digits, digits + sizeof digits, n).ptr - digits);
    }
    for (const QByteArray* field : {&subject, &from, &date, &to}) {
        line += '\t';
        const qsizetype start = line.size();
        line += *field;
        // A TAB of a folded header would shift the columns. Rare: looked
        // for first, so most fields are not walked byte by byte.
        if (field->contains('\t'))
            std::replace(line.begin() + start, line.end(), '\t', ' ');
    }
    return line;
}

} // namespace mirel
