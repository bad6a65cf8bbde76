#pragma once
// The agenda store "\mirel\agenda.ini", section "AGENDA": "ID" = the number
// of items, keys "1".."ID" = items in the decimal-triplet encoding (keys
// above ID may remain from earlier saves and are ignored).
//
// Loading builds four working lists:
//   lstAgUnSort  every item in key order (item data: its position)
//   lstWeekly    weekday number (Sunday = 1) <1> item, per flag of a weekly item
//   lstAgSorted  occurrences of the coming week with real dates: dated items
//                from today to today + 7, weekly ones today to today + 6
//   lstAgenda    lstAgSorted grouped under day headers (item data -1)
// A row's item data is always the item's position in lstAgUnSort, so a click
// finds the item even when the store had gaps between its keys.
#include "organiser/AgendaItem.h"
#include "organiser/OrganiserContext.h"
#include "organiser/SortedList.h"

namespace mirel {

/// The four working lists of the agenda.
struct AgendaLists {
    SortedList lstAgUnSort{false};
    SortedList lstAgSorted{true};
    SortedList lstWeekly{true};
    SortedList lstAgenda{false};
};

/// Loading and writing the agenda store and building its views.
class AgendaStore {
public:
    enum class View { Present, Past };
    explicit AgendaStore(const OrganiserContext& ctx) : m_ctx(ctx) {}

    QString path() const { return m_ctx.folders.path(QStringLiteral("\\mirel\\agenda.ini")); }
    void load(AgendaLists& lists) const;
    /// The agenda screen's rows for a view; uses lstSorted1 as its working list.
    void showList(const AgendaLists& lists, View view, SortedList& lstSorted1,
                  SortedList& rows) const;
    /// Writes every entry of lstAgUnSort to keys 1.. and "ID" in one replace.
    bool write(const SortedList& lstAgUnSort) const;

private:
    const OrganiserContext& m_ctx;
};

} // namespace mirel
