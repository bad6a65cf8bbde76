#pragma once
// The account manager's rules, apart from its window. It works on the shared
// account list in place, so every change is seen at once by the rest of the
// mail client; only "OK" in the window writes the file.
//
// State: the selected position, -1 when no row is selected. Edits made while
// nothing is selected are dropped. Deleting clears the selection and never
// hands the default mark to another account; making one the default takes it
// from every other.
#include "mail/transport/AccountRecord.h"
#include "mail/transport/EmailAccountList.h"

#include <QList>

namespace mirel {

/// New, select, edit, default and delete over lstEmailAccounts.
class AccountManager {
public:
    explicit AccountManager(EmailAccountList& accounts) : m_accounts(accounts) {}

    /// The list's row texts: field 0 of each entry, marker included.
    QList<QByteArray> rows() const;
    /// The row selected when the window opens: the last entry marked as the
    /// default (a hand-edited file may mark several), -1 when none is.
    qsizetype initialRow() const;

    qsizetype selected() const { return m_selected; }
    /// Selects row i (anything out of range selects none) and returns what
    /// the text boxes and check boxes show for it; empty for none.
    AccountRecord::Settings select(qsizetype i);
    /// Rebuilds the selected entry from the boxes; false when none is selected.
    bool edit(const AccountRecord::Settings& settings);

    /// Appends a fresh account (the default when it is the first) and
    /// selects it; -1 and no change for an empty name.
    qsizetype addNew(QByteArrayView name);
    /// Makes the selected account the only default; false when none is selected.
    bool makeDefault();
    /// Removes the selected account and clears the selection.
    bool deleteSelected();

private:
    EmailAccountList& m_accounts;
    qsizetype m_selected = -1;
};

} // namespace mirel
