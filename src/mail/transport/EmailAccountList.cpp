#include "mail/transport/EmailAccountList.h"

#include "mail/transport/AccountRecord.h"

namespace mirel {

qsizetype EmailAccountList::appendNew(QByteArrayView name) {
    m_entries.append(AccountRecord::fresh(name, m_entries.isEmpty()));
    return m_entries.size() - 1;
}

void EmailAccountList::makeDefault(qsizetype i) {
    if (i < 0 || i >= m_entries.size())
        return;
    for (qsizetype k = 0; k < m_entries.size(); ++k)
        m_entries[k] = AccountRecord::withMarker(m_entries[k], k == i);
}

qsizetype EmailAccountList::defaultIndex() const {
    for (qsizetype k = 0; k < m_entries.size(); ++k)
        if (AccountRecord::isDefault(m_entries[k]))
            return k;
    return -1;
}

} // namespace mirel
