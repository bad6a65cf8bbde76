#include "OrganiserFixture.h"

#include "organiser/AgendaEditor.h"
#include "platform/IniDocument.h"
#include "settings/TripletCodec.h"

using namespace mirel;
using namespace mirel::test;

namespace {

// An item in the stored form: start, end, text, kind, priority, 7 weekday flags.
QByteArray item(const QByteArray& start, const QByteArray& end, const QByteArray& text,
                int priority = 0, const QByteArray& days = "0000000") {
    QByteArray s = start + '\x01' + end + '\x01' + text + '\x01' +
                   (start.startsWith("00000000") ? "1" : "0") + '\x01' +
                   QByteArray::number(priority) + '\x01';
    for (char c : days)
        s += QByteArray(1, c) + '\x01';
    return s;
}

class AgendaTest : public OrganiserFixture {
protected:
    AgendaStore store{ctx};
    AgendaLists lists;

    void writeStore(const QList<QByteArray>& items, int id = -1) {
        QByteArray ini =
            "[AGENDA]\r\nID=" + QByteArray::number(id < 0 ? items.size() : id) + "\r\n";
        for (int i = 0; i < items.size(); ++i)
            if (!items[i].isNull())
                ini += QByteArray::number(i + 1) + "=" + encodeTriplets(items[i]) + "\r\n";
        writeAll(store.path(), ini);
    }
    void setToday(int y, int m, int d, int h = 12, int min = 0) {
        clock.set(QDateTime(QDate(y, m, d), QTime(h, min)));
    }
    QList<QByteArray> rows(AgendaStore::View v) {
        SortedList sorted, out{false};
        store.showList(lists, v, sorted, out);
        return texts(out);
    }
};

// Catches a weekly item put on the wrong weekday, in the past or more than
// six days ahead when the week, the year or a leap day turns.
TEST_F(AgendaTest, WeeklyItemsOnEveryWeekdayAcrossTheWeekTurns) {
    for (const QDate& today : {QDate(2006, 11, 19), QDate(2006, 11, 20), QDate(2006, 12, 31),
                               QDate(2007, 2, 28), QDate(2008, 2, 29), QDate(2008, 2, 28)}) {
        setToday(today.year(), today.month(), today.day());
        QList<QByteArray> items;
        for (int wd = 0; wd < 7; ++wd) {
            QByteArray days = "0000000";
            days[wd] = '1';
            items.append(
                item("000000000800", "000000000900", "day" + QByteArray::number(wd), 1, days));
        }
        writeStore(items);
        store.load(lists);
        ASSERT_EQ(lists.lstAgSorted.size(), 7) << today.toString().toStdString();
        for (const ListEntry& e : lists.lstAgSorted.entries()) {
            const QDate date = QDate::fromString(QString::fromLatin1(e.text.left(8)), "yyyyMMdd");
            const int wd = AgendaItem::parse(e.text).text.mid(3).toInt(); // Monday = 0
            EXPECT_EQ(date.dayOfWeek(), wd + 1) << e.text.constData();
            EXPECT_TRUE(date >= today && today.daysTo(date) <= 6) << e.text.constData();
        }
        EXPECT_TRUE(rows(AgendaStore::View::Past).isEmpty());
    }
}

// Catches a dated item listed twice, the present view cut at the wrong day,
// and the past view in the wrong order.
TEST_F(AgendaTest, PresentViewDropsDuplicatesAndPastViewIsNewestFirst) {
    QList<QByteArray> items, present, past;
    for (const auto& r : readTable("organiser/agenda-views.txt")) {
        if (r[0] == "item")
            items.append(item(r[1], r[2], r[3], r[4].toInt()));
        else
            (r[0] == "present" ? present : past).append(r[1]);
    }
    setToday(2006, 11, 16);
    writeStore(items);
    store.load(lists);
    EXPECT_EQ(lists.lstAgSorted.size(), 2); // up to today + 7 inclusive
    EXPECT_EQ(rows(AgendaStore::View::Present), present);
    EXPECT_EQ(rows(AgendaStore::View::Past), past);
}

// Catches a crash or a lost list on impossible dates, short records, a huge
// ID or a missing key, and key numbers used where a click needs positions.
TEST_F(AgendaTest, BrokenStoresShowWhatMakesSense) {
    setToday(2006, 11, 16);
    writeStore({item("20061340", "x", "bad date"), QByteArray(),
                "too\x01"
                "few",
                item("200611170900", "200611171000", "fine", 9, "ab")},
               1000000000);
    store.load(lists);
    EXPECT_EQ(lists.lstAgUnSort.size(), 3);
    EXPECT_EQ(lists.lstAgUnSort.itemData(2), 2);
    const auto present = rows(AgendaStore::View::Present);
    EXPECT_TRUE(present.contains("    09:00-10:00 9   fine"));
    EXPECT_TRUE(present.contains("200613.40"));

    AgendaEditor editor(ctx, store);
    AgendaEditorState ed;
    editor.show(lists, 0, ed);
    EXPECT_TRUE(ed.start.isValid());
}

// Catches the one-pass store reader taking a key the old rules ignore: a
// later line of a name already seen (also after a line without "="), a
// number spelled with a leading zero, keys past "ID" or in a second
// section of the same name; items come in number order, not file order.
TEST_F(AgendaTest, StoreReadsItemKeysByTheirRules) {
    writeAll(store.path(), readAll(testData("organiser/agenda-keys.ini")));
    store.load(lists);
    EXPECT_EQ(texts(lists.lstAgUnSort), (QList<QByteArray>{"A", "B", "D"}));
}

// Catches steps that overflow a short month or a leap day, an end left
// before the start, an hour step that does not carry into the next day and
// year or that goes by elapsed seconds on the day the clocks go back, and a
// day label shown for a weekly item; weekly items on that day likewise.
TEST_F(AgendaTest, EditorTimeStepsAndTheDaylightSavingDay) {
    qputenv("TZ", "Europe/Berlin");
    tzset();
    const QString fmt = "yyyy-MM-dd hh:mm";
    AgendaEditorState ed;
    for (const auto& r : readTable("organiser/editor-steps.txt")) {
        if (r[0] != "-") {
            ed.start = QDateTime::fromString(QString::fromLatin1(r[0]), fmt);
            ed.end = QDateTime::fromString(QString::fromLatin1(r[1]), fmt);
        }
        AgendaEditor::step(ed, AgendaEditor::Step(r[2].left(2).trimmed().toInt()));
        EXPECT_EQ((ed.start.toString(fmt) + " | " + ed.end.toString(fmt)).toStdString(),
                  (r[3] + " | " + r[4]).toStdString())
            << r[0].data() << " " << r[2].data();
    }
    EXPECT_EQ(ed.labels().month, "January");
    ed.dated = false;
    EXPECT_EQ(ed.labels().day, "--");

    setToday(2006, 10, 29, 2, 30);
    writeStore({item("000000000230", "000000000330", "on a DST day", 0, "0000001")});
    store.load(lists);
    ASSERT_EQ(lists.lstAgSorted.size(), 1);
    EXPECT_TRUE(lists.lstAgSorted.text(0).startsWith("200610290230"));
    qunsetenv("TZ");
    tzset();
}

// Catches an unchanged item written anew, a changed one not moved to the
// end or losing its times when made weekly, and a delete that leaves the
// count behind.
TEST_F(AgendaTest, SaveAddDeleteAndUnchangedWritesNothing) {
    setToday(2006, 11, 16, 14, 37);
    writeStore({item("200611200900", "200611201000", "first"),
                item("200611210900", "200611211000", "second")});
    store.load(lists);
    AgendaEditor editor(ctx, store);
    AgendaEditorState ed;
    qint16 sel = 0;
    editor.show(lists, sel, ed);
    const QByteArray bytes = readAll(store.path());
    EXPECT_FALSE(editor.save(lists, sel, ed));
    EXPECT_EQ(readAll(store.path()), bytes);
    EXPECT_EQ(overviewRefreshes, 1);

    sel = 0;
    editor.show(lists, sel, ed);
    ed.dated = false;
    ed.weekdays[0] = true;
    EXPECT_TRUE(editor.save(lists, sel, ed));
    ASSERT_EQ(lists.lstAgUnSort.size(), 2);
    EXPECT_TRUE(lists.lstAgUnSort.text(1).startsWith(
        QByteArray("000000000900|000000001000|first|1|").replace('|', '\x01')));

    // Deleting the last leaves ID 1; key 2 may remain and is ignored.
    sel = 1;
    EXPECT_TRUE(editor.remove(lists, sel, ed));
    EXPECT_EQ(IniDocument(readAll(store.path())).value("AGENDA", "ID"), "1");
    store.load(lists);
    EXPECT_EQ(lists.lstAgUnSort.size(), 1);
}

} // namespace
