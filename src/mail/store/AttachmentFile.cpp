#include "mail/store/AttachmentFile.h"

#include <QCoreApplication>
#include <QSaveFile>

namespace mirel {

QString AttachmentFile::proposedName(const QString& fullName) {
    // Senders write "/" and "\" alike; neither may lead the file elsewhere.
    QString name = fullName;
    name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    name = name.section(QLatin1Char('/'), -1).trimmed();
    name.remove(QChar(0));
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return QStringLiteral("attachment");
    return name;
}

QString AttachmentFile::saveFilter(const QString& fullName) {
    const qsizetype dot = fullName.lastIndexOf(QLatin1Char('.'));
    QString ext = dot > 0 ? fullName.mid(dot + 1) : QStringLiteral("*");
    // Characters that end or split a filter pattern would garble the dialog.
    for (const QChar c : {QChar(')'), QChar('('), QChar(';'), QChar(' '), QChar('/')})
        ext.remove(c);
    if (ext.isEmpty())
        ext = QStringLiteral("*");
    return QStringLiteral("Selected files (*.%1);;All files (*.*)").arg(ext);
}

bool AttachmentFile::WriteAttachmentFile(const QByteArray& data, const QString& path,
                                         QString* error, const Between& between) {
    // Written beside the target and renamed over it at the end: the old
    // file is replaced whole, and a failure leaves it as it was.
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    bool ok = file.open(QIODevice::WriteOnly);
    for (qsizetype at = 0; ok && at < data.size(); at += kPiece) {
        if (data.size() > kPiece) {
            if (between)
                between();
            else
                QCoreApplication::processEvents();
        }
        const qsizetype n = qMin(kPiece, data.size() - at);
        ok = file.write(data.constData() + at, n) == n;
    }
    if (ok)
        ok = file.commit();
    if (!ok && error)
        *error = file.errorString();
    if (!ok && file.isOpen())
        file.cancelWriting();
    return ok;
}

} // namespace mirel
