#include "mail/transport/AccountManager.h"

namespace mirel {

QList<QByteArray> AccountManager::rows() const {
    QList<QByteArray> out;
    out.reserve(m_accounts.size());
    for (const QByteArray& entry : m_accounts.entries())
        out.append(AccountRecord::field(entry, AccountRecord::MarkerAndName));
    return out;
}

qsizetype AccountManager::initialRow() const {
    qsizetype row = -1;
    for (qsizetype i = 0; i < m_accounts.size(); ++i)
        if (AccountRecord::isDefault(m_accounts.at(i)))
            row = i;
    return row;
}

AccountRecord::Settings AccountManager::select(qsizetype i) {
    m_selected = (i >= 0 && i < m_accounts.size()) ? i : -1;
    if (m_selected < 0)
        return {};
    return AccountRecord::settings(m_accounts.at(m_selected));
}

bool AccountManager::edit(const AccountRecord::Settings& settings) {
    if (m_selected < 0 || m_selected >= m_accounts.size())
        return false;
    m_accounts.replace(m_selected, AccountRecord::edited(m_accounts.at(m_selected), settings));
    return true;
}

qsizetype AccountManager::addNew(QByteArrayView name) {
    if (name.isEmpty())
        return -1;
    m_selected = m_accounts.appendNew(name);
    return m_selected;
}

bool AccountManager::makeDefault() {
    if (m_selected < 0 || m_selected >= m_accounts.size())
        return false;
    m_accounts.makeDefault(m_selected);
    return true;
}

bool AccountManager::deleteSelected() {
    if (m_selected < 0 || m_selected >= m_accounts.size())
        return false;
    m_accounts.removeAt(m_selected);
    m_selected = -1;
    return true;
}

} // namespace mirel
