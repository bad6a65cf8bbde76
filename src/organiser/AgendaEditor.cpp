#include "organiser/AgendaEditor.h"

#include <QLocale>
#include <iterator>

namespace mirel {
namespace {

// The fourteen time steps in command order: the unit and amount, and whether
// only the end moves (the start steps move both ends, keeping the duration).
enum class Unit { Days, Months, Years, Seconds };
struct StepRule {
    Unit unit;
    int amount;
    bool endOnly;
};
constexpr StepRule kSteps[] = {
    {Unit::Days, 1, false},       {Unit::Days, -1, false},       {Unit::Months, 1, false},
    {Unit::Months, -1, false},    {Unit::Years, 1, false},       {Unit::Years, -1, false},
    {Unit::Seconds, 3600, false}, {Unit::Seconds, -3600, false}, {Unit::Seconds, 60, false},
    {Unit::Seconds, -60, false},  {Unit::Seconds, 3600, true},   {Unit::Seconds, -3600, true},
    {Unit::Seconds, 60, true},    {Unit::Seconds, -60, true}};

QDateTime moved(const QDateTime& t, Unit unit, int amount) {
    switch (unit) {
    case Unit::Days:
        return t.addDays(amount);
    case Unit::Months:
        return t.addMonths(amount);
    case Unit::Years:
        return t.addYears(amount);
    case Unit::Seconds:
        return t.addSecs(amount);
    }
    return t;
}

QByteArray fmt(const QDateTime& t, const char* pattern) {
    return t.toString(QString::fromLatin1(pattern)).toLatin1();
}

void moveBy(AgendaEditorState& ed, const StepRule& r, int amount) {
    if (!r.endOnly)
        ed.start = moved(ed.start, r.unit, amount);
    ed.end = moved(ed.end, r.unit, amount);
    // Moving the end back never takes it before the start.
    if (r.endOnly && amount < 0)
        ed.end = std::max(ed.end, ed.start);
}

} // namespace

AgendaEditorState::Labels AgendaEditorState::labels() const {
    Labels l{fmt(start, "HH"), fmt(start, "mm"), fmt(end, "HH"), fmt(end, "mm"), "--", "--", "--"};
    if (dated) {
        l.day = fmt(start, "dd");
        l.month = QLocale::c().monthName(start.date().month()).toLatin1();
        l.year = fmt(start, "yyyy");
    }
    return l;
}

void AgendaEditor::show(const AgendaLists& lists, int i, AgendaEditorState& ed) const {
    const QByteArray entry = lists.lstAgUnSort.text(i);
    const QDateTime now = m_ctx.clock.now();
    if (entry.isEmpty()) {
        ed = AgendaEditorState{};
        ed.start = QDateTime(now.date(), QTime(now.time().hour(), now.time().minute()));
        ed.end = ed.start.addSecs(3600);
        return;
    }
    const AgendaItem item = AgendaItem::parse(entry);
    ed.text = item.text;
    ed.priority = item.priority >= 1 && item.priority <= 7 ? item.priority : 0;
    ed.dated = !item.weekly;
    ed.weekdays = item.weekdays;
    ed.start = item.startOn(now.date());
    ed.end = item.endOn(now.date());
    // Digits that make no real date (20061340) open on today, keeping the times.
    if (!ed.start.isValid())
        ed.start = QDateTime(now.date(), QTime(0, 0));
    if (!ed.end.isValid())
        ed.end = ed.start;
}

void AgendaEditor::step(AgendaEditorState& ed, int code) {
    if (code >= 0 && code < int(std::size(kSteps)))
        moveBy(ed, kSteps[code], kSteps[code].amount);
}

void AgendaEditor::setTime(AgendaEditorState& ed, int field, int value) {
    if (field != StartHourUp && field != StartMinUp && field != EndHourUp && field != EndMinUp)
        return;
    const bool hour = field == StartHourUp || field == EndHourUp;
    if (value < 0 || value > (hour ? 23 : 59))
        return;
    const QTime shown = (field >= EndHourUp ? ed.end : ed.start).time();
    const StepRule& r = kSteps[field];
    moveBy(ed, r, (value - (hour ? shown.hour() : shown.minute())) * r.amount);
}

QByteArray AgendaEditor::build(const AgendaEditorState& ed) {
    AgendaItem item;
    item.weekly = !ed.dated;
    const char* pattern = ed.dated ? "yyyyMMddHHmm" : "'00000000'HHmm";
    item.start = fmt(ed.start, pattern);
    item.end = fmt(ed.end, pattern);
    item.text = ed.text;
    item.priority = ed.priority;
    item.weekdays = ed.weekdays;
    return item.serialise();
}

bool AgendaEditor::save(AgendaLists& lists, qint16& selection, AgendaEditorState& ed) const {
    const QByteArray item = build(ed);
    if (selection >= 0) {
        if (lists.lstAgUnSort.text(selection) == item) {
            show(lists, -1, ed);
            m_ctx.refreshOverview();
            return false;
        }
        lists.lstAgUnSort.removeAt(selection);
    }
    lists.lstAgUnSort.add(item, int(lists.lstAgUnSort.size()));
    const bool written = m_store.write(lists.lstAgUnSort);
    m_store.load(lists);
    selection = -1;
    show(lists, -1, ed);
    m_ctx.refreshOverview();
    return written;
}

bool AgendaEditor::remove(AgendaLists& lists, qint16& selection, AgendaEditorState& ed) const {
    if (selection < 0 || selection >= lists.lstAgUnSort.size() || !m_ctx.confirmDelete())
        return false;
    lists.lstAgUnSort.removeAt(selection);
    const bool written = m_store.write(lists.lstAgUnSort);
    m_store.load(lists);
    selection = -1;
    show(lists, -1, ed);
    m_ctx.refreshOverview();
    return written;
}

} // namespace mirel
