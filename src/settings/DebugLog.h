#pragma once
#include "platform/Clock.h"

#include <QString>

namespace mirel {

/// WriteDebugLog: one line per event appended to ProgramDir + "\debug.txt"
/// while the theme switch "Debug" is on; the file is opened and closed per
/// line so it can be read while the program runs, and never truncated.
class DebugLog {
public:
    DebugLog(const Clock& clock, QString programDir, bool enabled = false);

    void setEnabled(bool on) { m_enabled = on; }
    bool enabled() const { return m_enabled; }
    QString path() const;

    /// "yyyy-mm-dd hh:nn:ss Mirel: message" + CR LF.
    void WriteDebugLog(QByteArrayView message) const;
    static QByteArray formatLine(const QDateTime& when, QByteArrayView message);

private:
    const Clock& m_clock;
    QString m_programDir;
    bool m_enabled;
};

} // namespace mirel
