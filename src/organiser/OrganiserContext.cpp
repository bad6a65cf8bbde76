#include "organiser/OrganiserContext.h"

#include "organiser/TextFile.h"

#include <QFile>
#include <QFileInfo>

namespace mirel {

QString OrganiserContext::defaultItemFolder(const QByteArray& key) const {
    return folders.path(QStringLiteral("\\Mirel\\") + QString::fromLatin1(key));
}

QString OrganiserContext::itemFolder(const QByteArray& key) const {
    if (ini.ReadIniKey("MIREL", key, directoriesIni()) && !ini.IniValue.isEmpty())
        return QString::fromUtf8(ini.IniValue);
    return defaultItemFolder(key);
}

bool OrganiserContext::itemFolderPresent(const QByteArray& key) const {
    const QString folder = itemFolder(key);
    if (QFileInfo(folder).isDir())
        return true;
    reportFileError(QStringLiteral("The %1 folder \"%2\" named in \"directories.ini\" does not "
                                   "exist. Nothing is saved until it exists or the file names "
                                   "another folder.")
                        .arg(QString::fromLatin1(key).toLower(), folder));
    return false;
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
