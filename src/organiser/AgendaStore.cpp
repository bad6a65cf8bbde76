#include "organiser/AgendaStore.h"

#include "platform/IniFile.h"
#include "settings/CommaList.h"
#include "settings/TripletCodec.h"

#include <algorithm>

namespace mirel {

void AgendaStore::load(AgendaLists& lists) const {
    lists.lstAgUnSort.clear();
    QByteArray bytes;
    IniFile::load(path(), bytes);
    const QHash<QByteArray, QByteArray> keys = IniDocument(bytes).sectionValues("AGENDA");
    const long n = leadingNumber(keys.value("id"));
    // An "ID" far beyond the keys present must not cost a lookup per number.
    long highest = 0;
    for (auto it = keys.keyBegin(); it != keys.keyEnd(); ++it)
        highest = std::max(highest, leadingNumber(*it));
    for (long p = 0; p < std::min(n, highest); ++p) {
        const auto v = keys.constFind(QByteArray::number(p + 1));
        if (v != keys.constEnd())
            lists.lstAgUnSort.add(decodeTriplets(*v), int(lists.lstAgUnSort.size()));
    }

    const QDate today = m_ctx.clock.now().date();
    const long todayNum = dateDigits(today).toLong();
    const long limit = dateDigits(today.addDays(7)).toLong();
    QList<ListEntry> sorted, weekly;
    for (const ListEntry& e : lists.lstAgUnSort.entries()) {
        if (!e.text.startsWith("00000000")) {
            const long date = entryDate(e.text);
            if (date >= todayNum && date <= limit)
                sorted.append(e);
            continue;
        }
        const AgendaItem item = AgendaItem::parse(e.text);
        for (int i = 0; i < 7; ++i) // Monday is 2 … Saturday 7, Sunday 1
            if (item.weekdays[i])
                weekly.append(
                    {QByteArray::number(i == 6 ? 1 : i + 2) + kFieldSep + e.text, e.itemData});
    }
    lists.lstWeekly.clear();
    lists.lstWeekly.addAll(weekly);

    const int w = today.dayOfWeek() % 7 + 1; // Sunday = 1
    for (const ListEntry& e : lists.lstWeekly.entries()) {
        const int d = int(leadingNumber(e.text));
        const QByteArray date = dateDigits(today.addDays((d - w + 7) % 7));
        sorted.append({date + e.text.mid(10, 4) + kFieldSep + date + e.text.mid(23), e.itemData});
    }
    lists.lstAgSorted.clear();
    lists.lstAgSorted.addAll(sorted);

    lists.lstAgenda.clear();
    QByteArray previousDate;
    for (const ListEntry& e : lists.lstAgSorted.entries()) {
        if (e.text.left(8) != previousDate)
            lists.lstAgenda.add(dayHeader(e.text), -1);
        previousDate = e.text.left(8);
        lists.lstAgenda.add(e.text, e.itemData);
    }
}

void AgendaStore::showList(const AgendaLists& lists, View view, SortedList& lstSorted1,
                           SortedList& rows) const {
    lstSorted1.clear();
    rows.clear();
    QList<ListEntry> all;
    for (const ListEntry& e : lists.lstAgUnSort.entries())
        if (entryDate(e.text) > 0)
            all.append(e);
    all.append(lists.lstAgSorted.entries());
    lstSorted1.addAll(all);

    const long today = dateDigits(m_ctx.clock.now().date()).toLong();
    QList<ListEntry> kept;
    const QList<ListEntry>& entries = lstSorted1.entries();
    if (view == View::Present) {
        QByteArray previous;
        for (const ListEntry& e : entries) {
            // Sorted, so a duplicate stands right after its twin.
            const bool newer = !e.text.isEmpty() && e.text > previous;
            previous = e.text;
            if (newer && entryDate(e.text) >= today)
                kept.append(e);
        }
    } else {
        for (auto it = entries.rbegin(); it != entries.rend(); ++it) {
            const long date = entryDate(it->text);
            if (!it->text.isEmpty() && date > 0 && date < today)
                kept.append(*it);
        }
    }
    QByteArray previousDate;
    for (const ListEntry& e : kept) {
        if (e.text.left(8) != previousDate)
            rows.add(dayHeader(e.text), -1);
        previousDate = e.text.left(8);
        rows.add("    " + occurrenceText(AgendaItem::parse(e.text)), e.itemData);
    }
}

bool AgendaStore::write(const SortedList& lstAgUnSort) const {
    QList<std::pair<QByteArray, QByteArray>> kv;
    kv.reserve(lstAgUnSort.size() + 1);
    for (qsizetype i = 0; i < lstAgUnSort.size(); ++i)
        kv.append({QByteArray::number(i + 1), encodeTriplets(lstAgUnSort.text(i))});
    kv.append({"ID", QByteArray::number(lstAgUnSort.size())});
    const IniResult r = IniFile::modify(path(), [&](IniDocument& doc, bool) {
        return doc.setValues("AGENDA", kv) ? IniResult{} : IniFile::refused(path());
    });
    if (!r)
        m_ctx.reportFileError(r.error);
    return bool(r);
}

} // namespace mirel
