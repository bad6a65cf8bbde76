#pragma once
// The agenda editor's state and commands: the edited item's start and end,
// dated or weekly mode, weekday ticks, priority and text, and the fourteen
// time steps. The editor never writes unless the item changed.
#include "organiser/AgendaStore.h"

namespace mirel {

/// What the editor's controls show.
struct AgendaEditorState {
    QDateTime start, end;
    bool dated = true;              // optMode element 0
    std::array<bool, 7> weekdays{}; // chkMirel 0..6, Monday first
    int priority = 0;               // the current "B<n>" button
    QByteArray text;                // txtMBox element 1
    bool focusText = false;

    /// The time labels: start hour/minute, end hour/minute, day, month, year.
    struct Labels {
        QByteArray startHour, startMin, endHour, endMin, day, month, year;
    };
    Labels labels() const;
    /// Mode refresh: weekday boxes enabled in weekly mode, the six date
    /// step buttons in dated mode.
    bool weekdayBoxesEnabled() const { return !dated; }
    bool dateButtonsEnabled() const { return dated; }
};

/// AGENDAADD … AGENDADELETE, AGENDAP0..7 and the time steps.
class AgendaEditor {
public:
    /// The time commands in their order, MODEDAYUP = 0 … ENDMINDOWN = 13.
    enum Step {
        DayUp,
        DayDown,
        MonthUp,
        MonthDown,
        YearUp,
        YearDown,
        StartHourUp,
        StartHourDown,
        StartMinUp,
        StartMinDown,
        EndHourUp,
        EndHourDown,
        EndMinUp,
        EndMinDown
    };

    AgendaEditor(const OrganiserContext& ctx, AgendaStore& store) : m_ctx(ctx), m_store(store) {}

    void show(const AgendaLists& lists, int i, AgendaEditorState& ed) const;
    static void step(AgendaEditorState& ed, int code);
    /// A typed hour or minute; field is StartHourUp, StartMinUp, EndHourUp
    /// or EndMinUp. Moves the time as that many steps would.
    static void setTime(AgendaEditorState& ed, int field, int value);
    static void selectPriority(AgendaEditorState& ed, int n) { ed.priority = n; }
    /// The item the editor holds, in the stored form.
    static QByteArray build(const AgendaEditorState& ed);

    /// Returns true when something was written. selection is the item's
    /// position in lstAgUnSort or -1 for a new item.
    bool save(AgendaLists& lists, qint16& selection, AgendaEditorState& ed) const;
    bool remove(AgendaLists& lists, qint16& selection, AgendaEditorState& ed) const;

private:
    const OrganiserContext& m_ctx;
    AgendaStore& m_store;
};

} // namespace mirel
