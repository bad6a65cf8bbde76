#include "organiser/AgendaStore.h"

#include "platform/CaseFold.h"
#include "platform/IniFile.h"
#include "settings/CommaList.h"
#include "settings/TripletCodec.h"

#include <algorithm>
#include <cstring>

namespace mirel {

namespace {

// A key the store writes for an item: decimal digits without a leading zero
// (short enough that counting up to it is conceivable).
bool isItemNumber(QByteArrayView name) {
    if (name.isEmpty() || name.size() > 18 || name[0] == '0')
        return false;
    for (const char c : name)
        if (c < '0' || c > '9')
            return false;
    return true;
}

// The first eight characters (the date) of an entry, without a copy.
QByteArrayView datePart(const QByteArray& entry) {
    return QByteArrayView(entry.constData(), std::min<qsizetype>(8, entry.size()));
}

// AgendaItem::parse(entry).weekdays without splitting the whole entry.
std::array<bool, 7> weekdayFlags(QByteArrayView entry) {
    std::array<bool, 7> flags{};
    qsizetype pos = 0;
    for (int field = 0; field < 12 && pos <= entry.size(); ++field) {
        const void* sep = std::memchr(entry.data() + pos, kFieldSep, size_t(entry.size() - pos));
        const qsizetype end = sep ? static_cast<const char*>(sep) - entry.data() : entry.size();
        if (field >= 5)
            flags[field - 5] = leadingNumber(entry.sliced(pos, end - pos)) != 0;
        pos = end + 1;
    }
    return flags;
}

} // namespace

void AgendaStore::load(AgendaLists& lists) const {
    lists.lstAgUnSort.clear();
    QByteArray bytes;
    IniFile::load(path(), bytes);
    // One pass over the section; the first line of a name hides later ones.
    // Items are the keys "1".."ID" in number order, but no further than the
    // highest number any key starts with.
    struct Numbered {
        long number;
        QByteArrayView value;
        bool hasValue;
    };
    std::vector<Numbered> numbered;
    QHash<QByteArray, bool> others; // folded name -> its first line has a value
    QByteArrayView id;
    IniDocument::forEachKey(bytes, "AGENDA", [&](QByteArrayView name, const QByteArrayView* v) {
        if (isItemNumber(name)) {
            numbered.push_back({leadingNumber(name), v ? *v : QByteArrayView(), v != nullptr});
            return;
        }
        QByteArray folded = toFolded(name);
        if (others.contains(folded))
            return;
        if (v && folded == "id")
            id = *v;
        others.insert(std::move(folded), v != nullptr);
    });
    std::stable_sort(numbered.begin(), numbered.end(),
                     [](const Numbered& a, const Numbered& b) { return a.number < b.number; });
    numbered.erase(
        std::unique(numbered.begin(), numbered.end(),
                    [](const Numbered& a, const Numbered& b) { return a.number == b.number; }),
        numbered.end());
    long highest = 0;
    for (auto it = others.cbegin(); it != others.cend(); ++it)
        if (it.value())
            highest = std::max(highest, leadingNumber(it.key()));
    for (const Numbered& k : numbered)
        if (k.hasValue)
            highest = std::max(highest, k.number);
    const long n = std::min(leadingNumber(id), highest);
    for (const Numbered& k : numbered) {
        if (k.number > n)
            break;
        if (k.hasValue)
            lists.lstAgUnSort.add(decodeTriplets(k.value), int(lists.lstAgUnSort.size()));
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
        const std::array<bool, 7> weekdays = weekdayFlags(e.text);
        for (int i = 0; i < 7; ++i) { // Monday is 2 … Saturday 7, Sunday 1
            const char day[] = {char('0' + (i == 6 ? 1 : i + 2)), kFieldSep};
            if (weekdays[i])
                weekly.append({joined({QByteArrayView(day, 2), e.text}), e.itemData});
        }
    }
    lists.lstWeekly.clear();
    lists.lstWeekly.addAll(weekly);

    const int w = today.dayOfWeek() % 7 + 1; // Sunday = 1
    std::array<QByteArray, 7> dates;         // of the coming week, by days from today
    for (int k = 0; k < 7; ++k)
        dates[k] = dateDigits(today.addDays(k));
    for (const ListEntry& e : lists.lstWeekly.entries()) {
        const int d = int(leadingNumber(e.text));
        const QByteArray& date = dates[(d - w + 7) % 7];
        sorted.append({joined({date, midView(e.text, 10, 4), QByteArrayView(&kFieldSep, 1), date,
                               midView(e.text, 23)}),
                       e.itemData});
    }
    lists.lstAgSorted.clear();
    lists.lstAgSorted.addAll(sorted);

    lists.lstAgenda.clear();
    QByteArrayView previousDate;
    for (const ListEntry& e : lists.lstAgSorted.entries()) {
        const QByteArrayView date = datePart(e.text);
        if (date != previousDate)
            lists.lstAgenda.add(dayHeader(e.text), -1);
        previousDate = date;
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
    QByteArrayView previousDate;
    for (const ListEntry& e : kept) {
        const QByteArrayView date = datePart(e.text);
        if (date != previousDate)
            rows.add(dayHeader(e.text), -1);
        previousDate = date;
        rows.add(entryOccurrenceText(e.text, "    "), e.itemData);
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
