#include "organiser/AgendaEditor.h"

#include <QLocale>

namespace mirel {
namespace {

QByteArray fmt(const QDateTime& t, const char* pattern) {
    return t.toString(QString::fromLatin1(pattern)).toLatin1();
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
    auto both = [&](auto f) {
        ed.start = f(ed.start);
        ed.end = f(ed.end);
    };
    switch (code) {
    case DayUp:
        both([](const QDateTime& t) { return t.addDays(1); });
        break;
    case DayDown:
        both([](const QDateTime& t) { return t.addDays(-1); });
        break;
    case MonthUp:
        both([](const QDateTime& t) { return t.addMonths(1); });
        break;
    case MonthDown:
        both([](const QDateTime& t) { return t.addMonths(-1); });
        break;
    case YearUp:
        both([](const QDateTime& t) { return t.addYears(1); });
        break;
    case YearDown:
        both([](const QDateTime& t) { return t.addYears(-1); });
        break;
    case StartHourUp:
        both([](const QDateTime& t) { return t.addSecs(3600); });
        break;
    case StartHourDown:
        both([](const QDateTime& t) { return t.addSecs(-3600); });
        break;
    case StartMinUp:
        both([](const QDateTime& t) { return t.addSecs(60); });
        break;
    case StartMinDown:
        both([](const QDateTime& t) { return t.addSecs(-60); });
        break;
    case EndHourUp:
        ed.end = ed.end.addSecs(3600);
        break;
    case EndHourDown:
        ed.end = std::max(ed.end.addSecs(-3600), ed.start);
        break;
    case EndMinUp:
        ed.end = ed.end.addSecs(60);
        break;
    case EndMinDown:
        ed.end = std::max(ed.end.addSecs(-60), ed.start);
        break;
    default:
        break;
    }
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
