#include "settings/IniHelpers.h"

#include "platform/IniFile.h"
#include "platform/PathResolver.h"
#include "platform/RuntimeError.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>

namespace mirel {
namespace {

// The error numbers reported for removal failures, as the platform's
// "last system error" would give them.
constexpr int kErrorFileNotFound = 2;
constexpr int kErrorAccessDenied = 5;

} // namespace

IniHelpers::IniHelpers(MessageSink& messages, SettingsStore& store)
    : m_messages(messages), m_store(store) {}

bool IniHelpers::ReadIniKey(QByteArrayView section, QByteArrayView key, const QString& file) {
    IniValue.clear();
    QByteArray value;
    const IniResult r = IniFile::read(file, section, key, value);
    if (r.status == IniResult::IoError) {
        m_messages.showMessage(QStringLiteral("Error Retrieving Key"), kMessageTitle,
                               MessageSink::Icon::None);
        return false;
    }
    if (r.status == IniResult::Missing)
        return false;
    auto readable = readableValue(std::move(value));
    if (!readable)
        return false;
    IniValue = std::move(*readable);
    return true;
}

std::optional<QByteArray> IniHelpers::readableValue(QByteArray value) {
    if (const qsizetype nul = value.indexOf('\0'); nul >= 0)
        value.truncate(nul);
    if (value.size() > kValueCap)
        value.truncate(kValueCap);
    if (value == kNotFound)
        return std::nullopt;
    return value;
}

bool IniHelpers::WriteIniKey(QByteArrayView section, QByteArrayView key, QByteArrayView value,
                             const QString& file) {
    IniValue.clear();
    const IniResult r = IniFile::write(file, section, key, value);
    if (!r) {
        m_messages.showMessage(QStringLiteral("Error Writing Key"), kMessageTitle,
                               MessageSink::Icon::None);
        return false;
    }
    return true;
}

void IniHelpers::DeleteIniEntry(const QString& file, QByteArrayView section, QByteArrayView key,
                                bool isIniFile, bool ignoreErrors) {
    const QString source = QStringLiteral("DeleteSetting [INI-File]");
    const QString description = QStringLiteral("System Error Code");
    if (!isIniFile) {
        if (!m_store.DeleteSetting(file, section, key) && !ignoreErrors)
            throw RuntimeError(kErrorFileNotFound, source, description);
        return;
    }
    IniResult r;
    if (section.isEmpty()) {
        const QString path = resolvePath(file);
        if (!QFileInfo::exists(path))
            r = {IniResult::Missing, {}};
        else if (!QFile::remove(path))
            r = {IniResult::IoError, {}};
    } else if (key.isEmpty()) {
        r = IniFile::removeSection(file, section);
    } else {
        r = IniFile::removeKey(file, section, key);
    }
    if (!r && !ignoreErrors)
        throw RuntimeError(r.status == IniResult::Missing ? kErrorFileNotFound : kErrorAccessDenied,
                           source, description);
}

QString IniHelpers::ShortPathOf(const QString& path) {
    const QString p = resolvePath(path);
    return QFileInfo::exists(p) ? p : QString();
}

} // namespace mirel
