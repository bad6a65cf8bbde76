#include "mail/store/FolderManager.h"

#include "mail/store/MailStore.h"
#include "platform/Cp1252.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace mirel {
namespace {

const char* const kFallbackNames[] = {"Inbox", "Outbox", "Sent", "Deleted"};
const QByteArray kFixedKeys[] = {MailStore::kInbox, MailStore::kOutbox, MailStore::kSent,
                                 MailStore::kDeleted};
const QString kDatabases[] = {QStringLiteral("index.mdb"), QStringLiteral("data.mdb"),
                              QStringLiteral("attachments.mdb")};
// What SQLite may leave beside a database; it belongs to the folder's mail.
const QString kJournals[] = {QStringLiteral("-journal"), QStringLiteral("-wal"),
                             QStringLiteral("-shm")};

QString shown(QByteArrayView name) {
    return Cp1252::toUnicode(name);
}

bool missingOrEmpty(const QString& path) {
    const QFileInfo info(path);
    return !info.exists() || info.size() == 0;
}

} // namespace

FolderNames::FolderNames(const std::array<QByteArray, 4>& skinTitles) {
    for (size_t i = 0; i < fixed.size(); ++i)
        fixed[i] =
            skinTitles[i].trimmed().isEmpty() ? QByteArray(kFallbackNames[i]) : skinTitles[i];
}

QByteArray FolderNames::displayName(QByteArrayView key) const {
    for (size_t i = 0; i < fixed.size(); ++i)
        if (key == kFixedKeys[i] || (i == 0 && key.isEmpty()))
            return fixed[i];
    return key.toByteArray();
}

QByteArray FolderNames::keyOf(QByteArrayView displayName) const {
    for (size_t i = 0; i < fixed.size(); ++i)
        if (displayName == fixed[i])
            return kFixedKeys[i];
    return displayName.toByteArray();
}

FolderManager::FolderManager(MailStore& store, MessageSink& messages)
    : m_store(store), m_messages(messages) {}

bool FolderManager::isFixed(QByteArrayView key) {
    for (const QByteArray& k : kFixedKeys)
        if (key == k)
            return true;
    return false;
}

QString FolderManager::refusal(QByteArrayView name) {
    const QByteArray trimmed = name.toByteArray().trimmed();
    if (trimmed.isEmpty())
        return QStringLiteral("Please enter a name for the folder.");
    if (trimmed == "." || trimmed == "..")
        return QStringLiteral("\"%1\" cannot be used as a folder name.").arg(shown(trimmed));
    if (trimmed.contains('/') || trimmed.contains('\0'))
        return QStringLiteral("A folder name cannot contain \"/\".");
    if (isFixed(trimmed))
        return QStringLiteral("\"%1\" is the name of a fixed mail folder.").arg(shown(trimmed));
    // The names go to disk as UTF-8; a name of more than 255 bytes cannot
    // be a directory name.
    if (QFile::encodeName(shown(trimmed)).size() > 255)
        return QStringLiteral("The folder name is too long.");
    return {};
}

bool FolderManager::refuse(QByteArrayView name) {
    const QString why = refusal(name);
    if (!why.isEmpty())
        tell(why);
    return !why.isEmpty();
}

void FolderManager::tell(const QString& text) {
    m_messages.showMessage(text, kMessageTitle, MessageSink::Icon::Warning);
}

QList<QByteArray> FolderManager::userFolders() const {
    QList<QByteArray> names;
    const QDir root(m_store.mailRoot());
    for (const QString& entry : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden,
                                               QDir::Name | QDir::IgnoreCase)) {
        const QByteArray name = Cp1252::fromUnicode(entry);
        // A directory whose name the code page cannot hold could never be
        // found again under that name.
        if (!isFixed(name) && shown(name) == entry && refusal(name).isEmpty() &&
            name == name.trimmed())
            names.append(name);
    }
    return names;
}

QList<QByteArray> FolderManager::allFolders() const {
    QList<QByteArray> keys(std::begin(kFixedKeys), std::end(kFixedKeys));
    return keys + userFolders();
}

QByteArray FolderManager::create(QByteArrayView name) {
    if (refuse(name))
        return {};
    const QByteArray folder = name.toByteArray().trimmed();
    if (!missingOrEmpty(m_store.databasePath(folder, kDatabases[1]))) {
        tell(QStringLiteral("A folder named \"%1\" already exists.").arg(shown(folder)));
        return {};
    }
    const QString dir = m_store.folderDir(folder);
    if (!QDir().mkpath(dir)) {
        tell(QStringLiteral("The folder \"%1\" could not be created.").arg(shown(folder)));
        return {};
    }
    QFile::setPermissions(dir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_store.CreateDataDatabase(folder);
    m_store.CreateIndexDatabase(folder);
    m_store.CreateAttachmentsDatabase(folder);
    return folder;
}

QByteArray FolderManager::rename(QByteArrayView oldName, QByteArrayView newName) {
    if (refuse(oldName) || refuse(newName))
        return {};
    const QByteArray to = newName.toByteArray().trimmed();
    if (to == oldName)
        return {};
    const QString from = m_store.folderDir(oldName);
    const QString target = m_store.folderDir(to);
    if (QFileInfo::exists(target) || QFileInfo(target).isSymLink()) {
        tell(QStringLiteral("A folder named \"%1\" already exists.").arg(shown(to)));
        return {};
    }
    if (!QDir().rename(from, target)) {
        tell(QStringLiteral("The folder \"%1\" could not be renamed.").arg(shown(oldName)));
        return {};
    }
    return to;
}

bool FolderManager::remove(QByteArrayView name) {
    if (refuse(name))
        return false;
    QString dir = m_store.folderDir(name);
    dir.chop(1);
    const QFileInfo info(dir);
    if (info.isSymLink() || !info.isDir()) {
        // A link would lead the removal out of the mail root.
        tell(QStringLiteral("\"%1\" is no mail folder and was left as it is.").arg(shown(name)));
        return false;
    }
    bool removed = true;
    for (const QString& db : kDatabases) {
        const QString path = m_store.databasePath(name, db);
        for (const QString& journal : kJournals)
            QFile::remove(path + journal);
        if (QFileInfo::exists(path) && !QFile::remove(path))
            removed = false;
    }
    if (!removed) {
        tell(
            QStringLiteral("The mail of the folder \"%1\" could not be removed.").arg(shown(name)));
        return false;
    }
    if (!QDir().rmdir(dir))
        tell(QStringLiteral("The mail of the folder \"%1\" was removed, but the folder holds other "
                            "files and was kept:\n%2")
                 .arg(shown(name), QDir::toNativeSeparators(dir)));
    return true;
}

} // namespace mirel
