#pragma once
// The working lists of the organiser: ordered byte strings, each with an
// integer item data. A sorted list keeps ascending order without regard to
// case on every insertion; an entry equal to existing ones goes after them,
// so insertion order breaks ties.
#include <QByteArray>
#include <QList>

#include <initializer_list>

namespace mirel {

/// One row of a working or visible list.
struct ListEntry {
    QByteArray text;
    int itemData = 0;
    bool operator==(const ListEntry&) const = default;
};

/// A list of entries, sorted case-insensitively when constructed sorted.
class SortedList {
public:
    SortedList() = default;
    explicit SortedList(bool sorted) : m_sorted(sorted) {}

    void clear() { m_entries.clear(); }
    /// Inserts at its sorted place (or appends for an unsorted list); returns the position.
    qsizetype add(const QByteArray& text, int itemData = 0);
    /// Adds many entries at once: same order as adding one by one, in n log n.
    void addAll(QList<ListEntry> entries);
    void removeAt(qsizetype i) { m_entries.removeAt(i); }

    qsizetype size() const { return m_entries.size(); }
    bool isEmpty() const { return m_entries.isEmpty(); }
    /// The entry's text, or empty text for a position outside the list (as a
    /// list control answers for a missing row).
    QByteArray text(qsizetype i) const;
    int itemData(qsizetype i) const;
    void setText(qsizetype i, const QByteArray& text) { m_entries[i].text = text; }
    const QList<ListEntry>& entries() const { return m_entries; }

private:
    bool m_sorted = true;
    QList<ListEntry> m_entries;
};

/// The character with code 1 that joins the fields of a working-list entry.
inline constexpr char kFieldSep = '\x01';
/// The part before / after the first field separator.
QByteArray beforeSep(const QByteArray& entry);
QByteArray afterSep(const QByteArray& entry);
/// The pieces one after another, in one allocation: for building the
/// thousands of entries of a working list.
QByteArray joined(std::initializer_list<QByteArrayView> pieces);
/// What QByteArray::mid gives, as a view into v: its pieces go to joined
/// without a copy each.
QByteArrayView midView(QByteArrayView v, qsizetype from, qsizetype len = -1);

} // namespace mirel
