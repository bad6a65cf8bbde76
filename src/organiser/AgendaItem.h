#pragma once
// An agenda item as the store keeps it, decoded: twelve fields each ended
// by the character 1 — start, end ("YYYYMMDDHHNN"; a weekly item has
// "00000000" for its date), text, kind, priority, and seven weekday flags
// Monday to Sunday. Whether an item is weekly is decided by its first eight
// characters alone.
#include <QByteArray>
#include <QDateTime>
#include <array>

namespace mirel {

/// The item record the lists, the editor and printing work with.
struct AgendaItem {
    QByteArray start; // twelve digits as stored (a broken one as it is)
    QByteArray end;
    QByteArray text;
    int priority = 0;
    std::array<bool, 7> weekdays{}; // Monday first
    bool weekly = false;

    /// Splits at the character 1; numbers by the leading-digit rule.
    static AgendaItem parse(const QByteArray& entry);
    /// Back to the stored form, each field followed by the character 1.
    QByteArray serialise() const;

    /// Start and end as date-times: a weekly item's fall on `today`; an
    /// item whose digits make no real date gives an invalid date-time.
    QDateTime startOn(const QDate& today) const { return toDateTime(start, today); }
    QDateTime endOn(const QDate& today) const { return toDateTime(end, today); }
    /// The first line of the text (up to its first CR).
    QByteArray firstLine() const;

    static QDateTime toDateTime(const QByteArray& digits, const QDate& today);
};

/// "YYYYMMDD" of a date, and the eight leading digits of an entry as a number.
QByteArray dateDigits(const QDate& d);
long entryDate(const QByteArray& entry);
/// "YYYYMM.DD dddd" for a day header (English weekday names), from the
/// entry's leading digits; the weekday is left out for a date that does not exist.
QByteArray dayHeader(const QByteArray& entry);
/// "HH:NN-HH:NN P   first line" as the agenda and overview rows show an item.
QByteArray occurrenceText(const AgendaItem& item);
/// occurrenceText(AgendaItem::parse(entry)), read straight from the entry:
/// for lists that show thousands of rows; indent goes in front.
QByteArray entryOccurrenceText(QByteArrayView entry, QByteArrayView indent = {});

} // namespace mirel
