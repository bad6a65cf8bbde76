#include "mail/store/MailRows.h"

namespace mirel {

QByteArray IndexRow::listLine() const {
    QByteArray line = QByteArray::number(id);
    for (const QByteArray& field :
         {QByteArray::number(readed), QByteArray::number(attachments), subject, from, date, to})
        line += '\t' + QByteArray(field).replace('\t', ' '); // a TAB of a folded header
                                                             // would shift the columns
    return line;
}

} // namespace mirel
