#pragma once
// A skin button may be protected: the ninth field of its control line, read
// as a boolean, asks for the user's password before the command runs. The
// line is read afresh at each click (override file first), so editing the
// skin takes effect without a restart.
#include <QByteArray>
#include <QString>

namespace mirel {

class IniHelpers;

/// The password decisions of a button click.
class PasswordGate {
  public:
    /// True when the control line of keyNumber in section asks for the password.
    static bool isProtected(IniHelpers& ini, QByteArrayView section, int keyNumber,
                            const QString& skinFile, const QString& overrideFile);
    /// The flag of one control line; a missing or unreadable field is "not protected".
    static bool lineIsProtected(QByteArrayView controlLine);
    /// Exact, case-sensitive: an empty stored password is matched by an empty entry only.
    static bool accepts(QByteArrayView entered, QByteArrayView stored) { return entered == stored; }
    /// "01", "02", ... as the skins number their lines.
    static QByteArray keyName(int keyNumber);
};

} // namespace mirel
