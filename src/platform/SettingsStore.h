#pragma once
// The per-user settings store shared by the programs of the family: one INI
// file per application, $XDG_CONFIG_HOME/<application>/settings.ini
// (XDG_CONFIG_HOME defaults to ~/.config). Section and key names compare
// without regard to case, so "Default" and "DEFAULT" are one section.
// Values are bytes as written; paths in them are UTF-8.
#include <QByteArray>
#include <QString>

namespace mirel {

/// GetSetting / SaveSetting / DeleteSetting over the family's settings files.
class SettingsStore {
public:
    /// configRoot is the folder that holds one folder per application.
    explicit SettingsStore(QString configRoot);
    /// The store of the current user, from XDG_CONFIG_HOME or ~/.config.
    static SettingsStore forCurrentUser();

    QString fileFor(const QString& app) const;

    QByteArray GetSetting(const QString& app, QByteArrayView section, QByteArrayView key,
                          const QByteArray& defaultValue = {}) const;
    /// False (and a debug-worthy reason in *error) when the file cannot be written.
    bool SaveSetting(const QString& app, QByteArrayView section, QByteArrayView key,
                     QByteArrayView value, QString* error = nullptr);
    /// Deletes one key, or the whole section when key is empty. False when
    /// there was nothing to delete or the file cannot be written.
    bool DeleteSetting(const QString& app, QByteArrayView section, QByteArrayView key = {},
                       QString* error = nullptr);

private:
    QString m_root;
};

/// The family name under which the shared values live.
inline const QString kFamilyApp = QStringLiteral("TORVEX Terminal");

} // namespace mirel
