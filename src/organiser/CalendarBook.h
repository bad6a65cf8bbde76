#pragma once
// Calendar notes belong to a day of the year, not a date: section
// "CALENDAR" of "\mirel\calendar.ini", key "MMDD", the note in the
// decimal-triplet encoding (an empty value: no note). February has 29 days
// every year, so a note for 29 February shows in every February.
#include "organiser/OrganiserContext.h"
#include "organiser/SortedList.h"

#include <array>

namespace mirel {

/// One month as the calendar screen shows it.
struct MonthView {
    int month = 1;
    int days = 31;                    // boxes 1..days visible, the rest hidden
    std::array<QByteArray, 31> notes; // decoded, notes[0] is day 1
    QString picture;                  // the month picture's path
};

/// The calendar store and screen logic.
class CalendarBook {
public:
    explicit CalendarBook(const OrganiserContext& ctx) : m_ctx(ctx) {}

    static int monthLength(int month);
    static QByteArray dayKey(int month, int day);
    QString path() const { return m_ctx.folders.path(QStringLiteral("\\mirel\\calendar.ini")); }
    /// The month picture: "calmonMM.bmp" in the theme's "Mirel" folder, else
    /// in the theme folder, as .bmp or .jpg.
    QString monthPicture(int month) const;

    MonthView showMonth(int month) const;
    /// Rows "DD Monthname  note" in calendar order, item data 3MMDD.
    void loadList(SortedList& rows, QByteArray* listSound = nullptr) const;
    /// A day box lost the focus: writes only when its text changed.
    /// Returns true when the note was written (then reload and refresh).
    bool dayLeft(int month, int day, const QByteArray& remembered, const QByteArray& text) const;
    /// The decoded note of a day, empty when there is none.
    QByteArray note(const QByteArray& mmdd) const;

private:
    const OrganiserContext& m_ctx;
};

} // namespace mirel
