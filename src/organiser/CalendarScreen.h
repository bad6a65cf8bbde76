#pragma once
// The calendar screen: the month picture, one box per day that saves when
// it loses the focus, and the list of every noted day of the year.
#include "organiser/CalendarBook.h"
#include "organiser/OrganiserShared.h"

#include <QObject>

namespace mirel {

/// CALENDAR, MONTHJAN..MONTHDEC and the day boxes' focus changes.
class CalendarScreen : public QObject {
    Q_OBJECT
public:
    CalendarScreen(OrganiserShared& shared, std::function<void()> refreshOverview)
        : m_sh(shared), m_book(shared.ctx), m_refreshOverview(std::move(refreshOverview)) {}

    void fill(int month);
    bool command(const QByteArray& name, int arg);
    void listClicked();
    /// Shows the month and puts the caret at the end of the day's box.
    void showDay(int month, int day);
    int month() const { return m_month; }
    const CalendarBook& book() const { return m_book; }
    /// Saves the day box being typed in as leaving it would: the screen,
    /// the month or the program is about to change under it.
    void commitTyping();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showMonth(int month);
    void loadList();
    int dayOf(QObject* box) const;

    OrganiserShared& m_sh;
    CalendarBook m_book;
    std::function<void()> m_refreshOverview;
    int m_month = 1;
    std::array<QByteArray, 31> m_shown; // what each day box showed of the month
};

} // namespace mirel
