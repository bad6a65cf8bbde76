#pragma once
// The overview list: four sections under headers that end in their counts —
// the coming days' agenda, the calendar notes of the next ten days, the
// mail folders and the open tasks. Every row carries a code that tells the
// click which screen to open and which item to select:
//   1 agenda header or day header, 1<p> agenda item p,
//   3 calendar header, 3MMDD a day's note,
//   4 mail header, 4nnnnn mail folder n (five digits),
//   7 to-do header, 7<k> open task k of the overview's task list.
#include "organiser/AgendaStore.h"
#include "organiser/OrganiserContext.h"

namespace mirel {

/// Captions and names the overview shows, read once at start.
struct OverviewTexts {
    QByteArray calendar; // "textA"
    QByteArray todo;     // "textB"
    QByteArray agenda;   // "textC"
    QByteArray mailFolders[4] = {"Inbox", "Outbox", "Sent", "Deleted"};
    QByteArray listSound;
};

/// What a click on an overview row asks for.
struct OverviewTarget {
    enum Screen { None, Agenda, Calendar, Email, Todo } screen = None;
    int agendaItem = -1;    // 1<p>
    int month = 0, day = 0; // 3MMDD
    int mailFolder = -1;    // 4nnnnn
    int task = -1;          // 7<k>
};

/// Builds the overview list and reads its codes.
class Overview {
public:
    explicit Overview(const OrganiserContext& ctx) : m_ctx(ctx) {}

    OverviewTexts readTexts() const;
    /// Rebuilds rows; lstSorted2 receives the open tasks.
    void refresh(const OverviewTexts& texts, const AgendaLists& agenda, SortedList& rows,
                 SortedList& lstSorted2) const;
    static OverviewTarget target(int code);

private:
    const OrganiserContext& m_ctx;
};

} // namespace mirel
