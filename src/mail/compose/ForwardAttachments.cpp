#include "mail/compose/ForwardAttachments.h"

#include "mail/store/MailStore.h"
#include "mail/view/MessageView.h"
#include "platform/Cp1252.h"

#include <QDir>
#include <QSaveFile>

namespace mirel {

QByteArray ForwardAttachments::fileNameFor(QByteArrayView storedName, int position) {
    const QByteArray fallback = "att" + QByteArray::number(position) + ".att";
    // A name without quotes is used as it stands, so the recipient of the
    // forward sees the name the sender gave, not "att1.att".
    const QByteArray name = MessageView::attachmentName(storedName);
    const bool plain = !name.isEmpty() && name != "." && name != ".." && !name.contains('/') &&
                       !name.contains('\\') && !name.contains('\0');
    return plain ? name : fallback;
}

std::optional<QList<QByteArray>>
ForwardAttachments::PrepareForwardAttachments(MailStore& store, QByteArrayView mailFolder,
                                              qint32 id, const QString& folder) {
    QDir().mkpath(folder);
    QList<QByteArray> list;
    QList<QByteArray> used;
    const std::vector<AttachmentRow> rows = store.readAttachments(mailFolder, id);
    for (size_t i = 0; i < rows.size(); ++i) {
        const AttachmentRow& row = rows[i];
        if (row.data.isEmpty())
            return std::nullopt;
        QByteArray name = fileNameFor(row.filename, int(i) + 1);
        // Two attachments of one name must not end up as one file.
        if (used.contains(name.toLower()))
            name = fileNameFor("", int(i) + 1);
        used.append(name.toLower());
        const QString path = folder + QLatin1Char('/') + Cp1252::toUnicode(name);
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(row.data) != row.data.size() ||
            !file.commit())
            return std::nullopt;
        // The list shows the stored name, as the message did.
        list.append(Cp1252::fromUnicode(path) + '\x01' + MessageView::attachmentName(row.filename));
    }
    return list;
}

void ForwardAttachments::emptyFolder(const QString& folder) {
    QDir dir(folder);
    for (const QString& name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System))
        dir.remove(name);
}

} // namespace mirel
