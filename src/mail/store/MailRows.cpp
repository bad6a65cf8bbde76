#include "mail/store/MailRows.h"

#include <algorithm>

namespace mirel {

QByteArray IndexRow::listLine() const {
    QByteArray line;
    line.reserve(32 + subject.size() + from.size() + date.size() + to.size());
    line += QByteArray::number(id);
    line += '\t';
    line += QByteArray::number(readed);
    line += '\t';
    line += QByteArray::number(attachments);
    for (const QByteArray* field : {&subject, &from, &date, &to}) {
        line += '\t';
        const qsizetype start = line.size();
        line += *field;
        // A TAB of a folded header would shift the columns.
        std::replace(line.begin() + start, line.end(), '\t', ' ');
    }
    return line;
}

} // namespace mirel
