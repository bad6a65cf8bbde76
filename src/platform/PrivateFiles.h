#pragma once
// Mail, notes, passwords and the shared store are nobody else's business:
// every file the program creates for them is 0600 and every folder 0700,
// whatever the user's umask says. Files that exist keep the mode their
// owner gave them.
#include <QFileDevice>
#include <QString>

namespace mirel {

inline constexpr QFileDevice::Permissions kPrivateFile =
    QFileDevice::ReadOwner | QFileDevice::WriteOwner;

/// Creates the folder and any missing parents, each of those it creates
/// 0700. True when the folder exists afterwards.
bool makePrivateFolder(const QString& path);

/// Remembers whether a file existed, so that a writer that replaces files
/// whole makes only the new ones private.
class NewFileGuard {
public:
    explicit NewFileGuard(QString path);
    /// Sets 0600 when the file did not exist at construction.
    void done() const;

private:
    QString m_path;
    bool m_existed;
};

} // namespace mirel
