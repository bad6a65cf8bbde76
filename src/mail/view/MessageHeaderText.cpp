#include "mail/view/MessageHeaderText.h"

#include "mail/mime/MailDisplayText.h"
#include "platform/MimeMessage.h"

namespace mirel {

QString messageHeaderText(QByteArrayView headers) {
    const MimeMessage m = MimeMessage::parse(headers.toByteArray() + "\r\n");
    QString out;
    for (const char* name : {"From", "To", "Cc", "Date", "Subject"}) {
        const QByteArray value = m.header(name);
        if (value.trimmed().isEmpty())
            continue;
        // A folded value keeps no TAB or line break that would break the layout.
        QString shown = MailDisplayText::decodeHeader(value).simplified();
        if (!out.isEmpty())
            out += QLatin1Char('\n');
        out += QLatin1String(name) + QStringLiteral(":  ") + shown;
    }
    return out;
}

} // namespace mirel
