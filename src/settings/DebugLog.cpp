#include "settings/DebugLog.h"
#include "platform/PrivateFiles.h"

#include "platform/PathResolver.h"

#include <QFile>

namespace mirel {

DebugLog::DebugLog(const Clock& clock, QString programDir, bool enabled)
    : m_clock(clock), m_programDir(std::move(programDir)), m_enabled(enabled) {}

QString DebugLog::path() const { return resolvePath(m_programDir + QStringLiteral("\\debug.txt")); }

QByteArray DebugLog::formatLine(const QDateTime& when, QByteArrayView message) {
    return when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toLatin1() + " Mirel: " +
           message.toByteArray() + "\r\n";
}

void DebugLog::WriteDebugLog(QByteArrayView message) const {
    if (!m_enabled)
        return;
    // Appending one short line is as close to atomic as a log needs; the log
    // is the one file written without error handling.
    QFile f(path());
    if (f.open(QIODevice::WriteOnly | QIODevice::Append, kPrivateFile))
        f.write(formatLine(m_clock.now(), message));
}

} // namespace mirel
