#include "organiser/SortedList.h"

#include "platform/CaseFold.h"

#include <algorithm>

namespace mirel {

qsizetype SortedList::add(const QByteArray& text, int itemData) {
    if (!m_sorted) {
        m_entries.append({text, itemData});
        return m_entries.size() - 1;
    }
    const auto at = std::upper_bound(
        m_entries.begin(), m_entries.end(), text,
        [](const QByteArray& t, const ListEntry& e) { return compareNoCase(t, e.text) < 0; });
    const qsizetype pos = at - m_entries.begin();
    m_entries.insert(pos, {text, itemData});
    return pos;
}

void SortedList::addAll(QList<ListEntry> entries) {
    if (m_sorted)
        std::stable_sort(entries.begin(), entries.end(),
                         [](const ListEntry& a, const ListEntry& b) {
                             return compareNoCase(a.text, b.text) < 0;
                         });
    if (m_entries.isEmpty()) {
        m_entries = std::move(entries);
        return;
    }
    if (!m_sorted) {
        m_entries.append(entries);
        return;
    }
    QList<ListEntry> merged;
    merged.reserve(m_entries.size() + entries.size());
    std::merge(m_entries.begin(), m_entries.end(), entries.begin(), entries.end(),
               std::back_inserter(merged), [](const ListEntry& a, const ListEntry& b) {
                   return compareNoCase(a.text, b.text) < 0;
               });
    m_entries = std::move(merged);
}

QByteArray SortedList::text(qsizetype i) const {
    return i >= 0 && i < m_entries.size() ? m_entries[i].text : QByteArray();
}

int SortedList::itemData(qsizetype i) const {
    return i >= 0 && i < m_entries.size() ? m_entries[i].itemData : 0;
}

QByteArray beforeSep(const QByteArray& entry) {
    const qsizetype p = entry.indexOf(kFieldSep);
    return p < 0 ? entry : entry.left(p);
}

QByteArray afterSep(const QByteArray& entry) {
    const qsizetype p = entry.indexOf(kFieldSep);
    return p < 0 ? QByteArray() : entry.mid(p + 1);
}

QByteArrayView midView(QByteArrayView v, qsizetype from, qsizetype len) {
    if (from >= v.size())
        return {};
    const qsizetype rest = v.size() - from;
    return v.sliced(from, len < 0 ? rest : std::min(len, rest));
}

QByteArray joined(std::initializer_list<QByteArrayView> pieces) {
    qsizetype size = 0;
    for (const QByteArrayView p : pieces)
        size += p.size();
    QByteArray out(size, Qt::Uninitialized);
    char* o = out.data();
    for (const QByteArrayView p : pieces)
        o = std::copy(p.begin(), p.end(), o);
    return out;
}

} // namespace mirel
