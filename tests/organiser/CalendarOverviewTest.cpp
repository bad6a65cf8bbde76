#include "OrganiserFixture.h"

#include "organiser/CalendarBook.h"
#include "organiser/Overview.h"
#include "settings/TripletCodec.h"

#include <QDir>

using namespace mirel;
using namespace mirel::test;

namespace {

using CalendarOverviewTest = OrganiserFixture;

QList<std::pair<QByteArray, int>> rowsOf(const SortedList& rows) {
    QList<std::pair<QByteArray, int>> out;
    for (const ListEntry& e : rows.entries())
        out.append({e.text, e.itemData});
    return out;
}

// Catches a day note written unchanged or for a day the month lacks, the
// note's encoding, rows not in day-of-year order, the list sound not read,
// February without its leap day, and an emptied day left listed.
TEST_F(CalendarOverviewTest, DayNotesByDayOfYear) {
    QDir().mkpath(QFileInfo(folders.skinFile()).path());
    writeAll(folders.skinFile(), "[CALENDAR]\r\nmon02=February\r\nmon03=March\r\nload=list\r\n");
    CalendarBook cal(ctx);
    EXPECT_TRUE(cal.dayLeft(2, 29, "", "Leap \xC4hm"));
    EXPECT_TRUE(cal.dayLeft(3, 15, "", "Dentist 9:00"));
    EXPECT_FALSE(cal.dayLeft(3, 15, "same", "same")); // unchanged: nothing written
    EXPECT_FALSE(cal.dayLeft(4, 31, "", "no such day"));
    EXPECT_TRUE(readAll(cal.path()).contains("0229=076101097112032196104109"));

    SortedList rows{false};
    QByteArray sound;
    cal.loadList(rows, &sound);
    EXPECT_EQ(rowsOf(rows), (QList<std::pair<QByteArray, int>>{{"29 February  Leap \xC4hm", 30229},
                                                               {"15 March  Dentist 9:00", 30315}}));
    EXPECT_EQ(sound, "list");

    const MonthView feb = cal.showMonth(2);
    EXPECT_EQ(feb.days, 29);
    EXPECT_EQ(feb.notes[28], "Leap \xC4hm");
    EXPECT_EQ(cal.showMonth(4).days, 30);

    EXPECT_TRUE(cal.dayLeft(3, 15, "Dentist 9:00", "")); // emptied: the row goes
    cal.loadList(rows);
    EXPECT_EQ(rows.size(), 1);
}

// Catches overview sections, counts or codes wrong: calendar days more than
// a week ahead or across the year end, weekly agenda items, mail folders
// without a skin name, done tasks, and tasks out of order; and a row's code
// that does not lead back to its screen and item.
TEST_F(CalendarOverviewTest, OverviewSectionsCodesAndCounts) {
    clock.set(QDateTime(QDate(2006, 12, 30), QTime(10, 0)));
    CalendarBook cal(ctx);
    cal.dayLeft(1, 1, "", "New year"); // two days ahead, across the year
    cal.dayLeft(1, 9, "", "ten days"); // k = 10: not shown
    cal.dayLeft(12, 30, "", "today");
    // A weekly item on Mondays: start, end, text, kind, priority, seven day flags.
    const QByteArray gym =
        QByteArray("000000000800|000000000900|Gym|1|2|1|0|0|0|0|0|0|").replace('|', '\x01');
    writeAll(data("agenda.ini"), "[AGENDA]\r\nID=1\r\n1=" + encodeTriplets(gym) + "\r\n");
    QDir().mkpath(folders.ProgramDir + "/Email/0");
    QDir().mkpath(folders.ProgramDir + "/Email/5");
    writeAll(data("Todo/20060101000000.tod"), "0\r\nzebra\r\n");
    writeAll(data("Todo/20060102000000.tod"), "1\r\ndone one\r\n");
    writeAll(data("Todo/20060103000000.tod"), "0\r\nApple\r\n");

    AgendaStore store(ctx);
    AgendaLists lists;
    store.load(lists);
    Overview ov(ctx);
    OverviewTexts texts; // the mail folders keep their own names
    texts.calendar = "Cal";
    texts.todo = "Todo";
    texts.agenda = "Agenda";
    SortedList rows{false}, tasks;
    ov.refresh(texts, lists, rows, tasks);
    QList<std::pair<QByteArray, int>> expected;
    for (const auto& r : readTable("organiser/overview-rows.txt"))
        expected.append({r[0], r[1].toInt()});
    EXPECT_EQ(rowsOf(rows), expected);

    EXPECT_EQ(Overview::target(10).agendaItem, 0);
    const OverviewTarget day = Overview::target(30229);
    EXPECT_EQ(day.screen, OverviewTarget::Calendar);
    EXPECT_EQ(day.month, 2);
    EXPECT_EQ(day.day, 29);
    EXPECT_EQ(Overview::target(400005).mailFolder, 5);
    EXPECT_EQ(Overview::target(71).task, 1);
    EXPECT_EQ(Overview::target(0).screen, OverviewTarget::None);
}

} // namespace
