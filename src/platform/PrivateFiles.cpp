#include "platform/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <sys/stat.h>

namespace mirel {

bool makePrivateFolder(const QString& path) {
    QStringList created;
    for (QString p = QDir::cleanPath(path); !p.isEmpty() && !QFileInfo::exists(p);) {
        created.prepend(p);
        const QString up = QFileInfo(p).path();
        if (up == p)
            break;
        p = up;
    }
    // Created 0700 in one step: a chmod afterwards would leave a moment in
    // which another user could open the folder.
    for (const QString& p : created)
        ::mkdir(QFile::encodeName(p).constData(), 0700);
    return QFileInfo(path).isDir();
}

NewFileGuard::NewFileGuard(QString path)
    : m_path(std::move(path)), m_existed(QFileInfo::exists(m_path)) {}

void NewFileGuard::done() const {
    if (!m_existed && QFileInfo::exists(m_path))
        QFile::setPermissions(m_path, kPrivateFile);
}

} // namespace mirel
