#pragma once
// "\email\accounts.ini" under the program folder: section "Email", keys
// "0", "1", ... without gaps, each value one account record in the
// decimal-triplet encoding. The first missing key ends the list, so a gap
// hides every account after it. The passwords inside are only encoded, not
// protected, which is why the file is kept readable by its owner alone.
#include "mail/transport/EmailAccountList.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"

namespace mirel {

/// LoadAccounts and SaveAccounts over the INI helpers.
class AccountsFile {
  public:
    static inline const QString kLiteral = QStringLiteral("\\email\\accounts.ini");
    static inline const QByteArray kSection = QByteArrayLiteral("Email");

    AccountsFile(IniHelpers& ini, const Folders& folders) : m_ini(ini), m_folders(folders) {}

    QString path() const { return m_folders.path(kLiteral); }

    /// The list as stored; a missing file gives an empty list.
    EmailAccountList LoadAccounts() const;
    /// Replaces section "Email" with the list, leaving other sections alone.
    /// False when a write failed (the INI helpers have told the user).
    bool SaveAccounts(const EmailAccountList& accounts) const;

  private:
    IniHelpers& m_ini;
    const Folders& m_folders;
};

} // namespace mirel
