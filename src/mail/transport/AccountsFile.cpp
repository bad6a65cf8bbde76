#include "mail/transport/AccountsFile.h"
#include "platform/PrivateFiles.h"

#include "settings/TripletCodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace mirel {
namespace {

// Creates the file empty and private when it is missing, so that no write
// below ever leaves the passwords in a file others may read.
void makePrivate(const QString& path) {
    makePrivateFolder(QFileInfo(path).absolutePath());
    if (!QFileInfo::exists(path)) {
        QFile f(path);
        if (f.open(QIODevice::WriteOnly))
            f.close();
    }
    QFile::setPermissions(path, kPrivateFile);
}

} // namespace

EmailAccountList AccountsFile::LoadAccounts() const {
    EmailAccountList list;
    const QString file = path();
    // A file left readable by an older version or another tool holds
    // passwords too.
    if (QFileInfo::exists(file))
        QFile::setPermissions(file, kPrivateFile);
    for (int i = 0; m_ini.ReadIniKey(kSection, QByteArray::number(i), file); ++i)
        list.append(decodeTriplets(m_ini.IniValue));
    return list;
}

bool AccountsFile::SaveAccounts(const EmailAccountList& accounts) const {
    const QString file = path();
    makePrivate(file);
    m_ini.DeleteIniEntry(file, kSection, {}, true, true);
    bool ok = true;
    for (qsizetype i = 0; i < accounts.size() && ok; ++i)
        ok = m_ini.WriteIniKey(kSection, QByteArray::number(i), encodeTriplets(accounts.at(i)),
                               file);
    // The file is replaced on every write; keep the replacement private too.
    QFile::setPermissions(file, kPrivateFile);
    return ok;
}

} // namespace mirel
