#include "organiser/OrganiserContext.h"

#include "organiser/TextFile.h"

#include <QFile>
#include <QFileInfo>

namespace mirel {

QString OrganiserContext::defaultItemFolder(const QByteArray& key) const {
    return folders.path(QStringLiteral("\\Mirel\\") + QString::fromLatin1(key));
}

QString OrganiserContext::itemFolder(const QByteArray& key) const {
    if (ini.ReadIniKey("MIREL", key, directoriesIni())) {
        const QString configured = QString::fromUtf8(ini.IniValue);
        if (!configured.isEmpty() && QFileInfo(configured).isDir())
            return configured;
    }
    return defaultItemFolder(key);
}

QByteArray OrganiserContext::stampNow() const {
    return clock.now().toString(QStringLiteral("yyyyMMddHHmmss")).toLatin1();
}

QByteArray OrganiserContext::listSound(const QByteArray& section) const {
    return ini.ReadIniKey(section, "load", folders.skinFile()) ? ini.IniValue : QByteArray();
}

bool OrganiserContext::confirmDelete() const {
    return messages.askYesNo(QStringLiteral("Are you sure to delete this item?"), kMessageTitle);
}

void OrganiserContext::deleteFile(const QString& path) const {
    if (!QFile::remove(path) && QFileInfo::exists(path))
        reportFileError(QStringLiteral("Cannot delete \"%1\"").arg(path));
}

std::optional<QList<QByteArray>> OrganiserContext::readItem(const QString& folder,
                                                            const QByteArray& name) const {
    QString error;
    auto lines =
        TextFile::readLines(folder + QLatin1Char('/') + QString::fromLocal8Bit(name), &error);
    if (!lines)
        reportFileError(error);
    return lines;
}

void OrganiserContext::reportFileError(const QString& error) const {
    messages.showMessage(error, kMessageTitle, MessageSink::Icon::Warning);
}

} // namespace mirel
