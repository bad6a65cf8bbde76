#include "platform/SettingsStore.h"
#include "platform/PrivateFiles.h"

#include "platform/IniFile.h"

#include <QDir>

namespace mirel {

SettingsStore::SettingsStore(QString configRoot) : m_root(std::move(configRoot)) {}

SettingsStore SettingsStore::forCurrentUser() {
    QString root = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (root.isEmpty())
        root = QDir::homePath() + QStringLiteral("/.config");
    return SettingsStore(root);
}

QString SettingsStore::fileFor(const QString& app) const {
    return m_root + QLatin1Char('/') + app + QStringLiteral("/settings.ini");
}

QByteArray SettingsStore::GetSetting(const QString& app, QByteArrayView section,
                                     QByteArrayView key, const QByteArray& defaultValue) const {
    QByteArray value;
    return IniFile::read(fileFor(app), section, key, value) ? value : defaultValue;
}

bool SettingsStore::SaveSetting(const QString& app, QByteArrayView section, QByteArrayView key,
                                QByteArrayView value, QString* error) {
    makePrivateFolder(m_root + QLatin1Char('/') + app);
    const IniResult r = IniFile::write(fileFor(app), section, key, value);
    if (!r && error)
        *error = r.error;
    return bool(r);
}

bool SettingsStore::DeleteSetting(const QString& app, QByteArrayView section,
                                  QByteArrayView key, QString* error) {
    const IniResult r = key.isEmpty() ? IniFile::removeSection(fileFor(app), section)
                                      : IniFile::removeKey(fileFor(app), section, key);
    if (!r && error)
        *error = r.error;
    return bool(r);
}

} // namespace mirel
