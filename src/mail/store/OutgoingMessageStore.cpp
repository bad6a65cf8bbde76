#include "mail/store/OutgoingMessageStore.h"

#include "mail/store/MailStore.h"
#include "platform/Cp1252.h"

#include <QFile>

namespace mirel {
namespace {

std::optional<QByteArray> unlessEmpty(const QByteArray& value) {
    return value.isEmpty() ? std::nullopt : std::optional<QByteArray>(value);
}

} // namespace

QByteArray OutgoingMessageStore::recipients(QByteArrayView to) {
    return to.toByteArray().replace(';', ',');
}

QByteArray OutgoingMessageStore::headerText(QByteArrayView cc, QByteArrayView bcc) {
    QByteArray h;
    if (!cc.isEmpty())
        h += "CC: " + cc.toByteArray() + "\r\n";
    if (!bcc.isEmpty())
        h += "BCC: " + bcc.toByteArray() + "\r\n";
    return h + kMailerLine;
}

QByteArray OutgoingMessageStore::attachmentFilename(const QString& path) {
    // Either separator ends a folder: a backslash in the name would leave a
    // folder part that a data folder shared with Windows cannot take.
    const qsizetype cut =
        qMax(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return "name=\"" + Cp1252::fromUnicode(QStringView(path).mid(cut + 1)) + '"';
}

OutgoingMessageStore::Result
OutgoingMessageStore::StoreOutgoingMessage(const OutgoingMessage& message, QByteArrayView folder) {
    NewIndexFields fields;
    fields.subject = unlessEmpty(message.subject);
    fields.from = unlessEmpty(message.from);
    fields.date = unlessEmpty(message.date);
    fields.to = unlessEmpty(recipients(message.to));
    MessageRow bodies;
    bodies.text = message.text;
    bodies.html = message.html;
    bodies.headers = headerText(message.cc, message.bcc);
    // The index field holds only the start of a long list; the whole list
    // travels in the header block, so no recipient is cut off.
    if (const QByteArray to = recipients(message.to); to.size() > MailStore::kTextFieldSize)
        bodies.headers.prepend("To: " + to + "\r\n");

    // One transaction for the whole message: a crash or a locked file
    // leaves either all of it in the folder or nothing.
    Result result;
    MailStore::Writer writer(m_store, folder);
    qsizetype drawn = 0;
    const MailStore::Writer::Drawn stored =
        writer.addDrawn(fields, bodies, [&]() -> std::optional<AttachmentRow> {
            if (drawn >= message.attachments.size())
                return std::nullopt;
            const QString& path = message.attachments[drawn];
            QFile file(path);
            AttachmentRow row;
            if (file.open(QIODevice::ReadOnly))
                row.data = file.readAll();
            if (!file.isOpen() || file.error() != QFileDevice::NoError) {
                result.error = QStringLiteral("The attachment \"%1\" could not be read: %2")
                                   .arg(path, file.errorString());
                return std::nullopt;
            }
            row.filename = attachmentFilename(path);
            ++drawn;
            return row;
        });
    if (!stored.id || !writer.commit())
        return {};
    result.id = stored.id;
    if (result.error.isEmpty() && stored.attachments < drawn)
        result.error = QStringLiteral("The attachment \"%1\" could not be stored.")
                           .arg(message.attachments[stored.attachments]);
    return result;
}

} // namespace mirel
