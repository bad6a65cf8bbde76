#pragma once
// The account list every mail part reads: an ordered list of account
// records (see AccountRecord), located by position only. The application
// owns one for the whole run (lstEmailAccounts); the account manager changes
// it in place and the other parts only read it. At most one record carries
// the default marker, and there may be none after the default is deleted.
#include <QByteArray>
#include <QList>

namespace mirel {

/// lstEmailAccounts as a plain value.
class EmailAccountList {
  public:
    EmailAccountList() = default;
    explicit EmailAccountList(QList<QByteArray> entries) : m_entries(std::move(entries)) {}

    qsizetype size() const { return m_entries.size(); }
    bool isEmpty() const { return m_entries.isEmpty(); }
    const QByteArray& at(qsizetype i) const { return m_entries.at(i); }
    const QList<QByteArray>& entries() const { return m_entries; }

    void clear() { m_entries.clear(); }
    void append(const QByteArray& record) { m_entries.append(record); }
    void replace(qsizetype i, const QByteArray& record) { m_entries[i] = record; }
    /// Removing the default leaves the list without one.
    void removeAt(qsizetype i) { m_entries.removeAt(i); }

    /// Appends a fresh record for name, the default when it is the first
    /// account; returns its position.
    qsizetype appendNew(QByteArrayView name);
    /// Marks entry i as the default and every other entry as not.
    void makeDefault(qsizetype i);
    /// The first entry carrying the default marker, -1 when none does.
    qsizetype defaultIndex() const;

    bool operator==(const EmailAccountList&) const = default;

  private:
    QList<QByteArray> m_entries;
};

} // namespace mirel
