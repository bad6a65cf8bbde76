#include "organiser/AgendaItem.h"

#include "organiser/SortedList.h"
#include "settings/CommaList.h"

namespace mirel {
namespace {

constexpr const char* kWeekdayNames[7] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                          "Friday", "Saturday", "Sunday"};

int num(const QByteArray& digits, int from, int len) {
    return int(leadingNumber(digits.mid(from, len)));
}

QByteArray hhnn(const QByteArray& digits) {
    return digits.mid(8, 2) + ':' + digits.mid(10, 2);
}

} // namespace

AgendaItem AgendaItem::parse(const QByteArray& entry) {
    const QList<QByteArray> f = entry.split(kFieldSep);
    AgendaItem item;
    item.start = f.value(0);
    item.end = f.value(1);
    item.text = f.value(2);
    item.priority = int(leadingNumber(f.value(4)));
    for (int i = 0; i < 7; ++i)
        item.weekdays[i] = leadingNumber(f.value(5 + i)) != 0;
    item.weekly = entry.startsWith("00000000");
    return item;
}

QByteArray AgendaItem::serialise() const {
    QByteArray out = start + kFieldSep + end + kFieldSep + text + kFieldSep + (weekly ? "1" : "0") +
                     kFieldSep + QByteArray::number(priority) + kFieldSep;
    for (bool on : weekdays)
        out += QByteArray(on && weekly ? "1" : "0") + kFieldSep;
    return out;
}

QByteArray AgendaItem::firstLine() const {
    const qsizetype cr = text.indexOf('\r');
    return cr < 0 ? text : text.left(cr);
}

QDateTime AgendaItem::toDateTime(const QByteArray& d, const QDate& today) {
    const QDate date =
        d.startsWith("00000000") ? today : QDate(num(d, 0, 4), num(d, 4, 2), num(d, 6, 2));
    return QDateTime(date, QTime(num(d, 8, 2), num(d, 10, 2)));
}

QByteArray dateDigits(const QDate& d) {
    return d.toString(QStringLiteral("yyyyMMdd")).toLatin1();
}

long entryDate(const QByteArray& entry) {
    return leadingNumber(entry.left(8));
}

QByteArray dayHeader(const QByteArray& entry) {
    QByteArray h = entry.left(6) + '.' + entry.mid(6, 2);
    const QDate date(num(entry, 0, 4), num(entry, 4, 2), num(entry, 6, 2));
    if (date.isValid())
        h += QByteArray(" ") + kWeekdayNames[date.dayOfWeek() - 1];
    return h;
}

QByteArray occurrenceText(const AgendaItem& item) {
    return hhnn(item.start) + '-' + hhnn(item.end) + ' ' + QByteArray::number(item.priority) +
           "   " + item.firstLine();
}

} // namespace mirel
