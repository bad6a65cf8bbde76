#include "mail/store/MailRows.h"

namespace mirel {

QByteArray IndexRow::listLine() const {
    QByteArray line = QByteArray::number(id);
    for (const QByteArray& field :
         {QByteArray::number(readed), QByteArray::number(attachments), subject, from, date, to})
        line += '\t' + field;
    return line;
}

} // namespace mirel
