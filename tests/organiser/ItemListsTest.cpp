#include "OrganiserFixture.h"

#include "organiser/AddressBook.h"
#include "organiser/Logbook.h"
#include "organiser/NotesBook.h"
#include "organiser/TodoList.h"

#include <QDir>
#include <sys/stat.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class ItemListsTest : public OrganiserFixture {
protected:
    OrganiserState st;
    EditBoxes boxes;
};

QList<QByteArray> rowTexts(const OrganiserState& st) {
    QList<QByteArray> out;
    for (const ListEntry& e : st.rows.entries())
        out.append(e.text);
    return out;
}

TEST_F(ItemListsTest, NotesSaveListEditAndDelete) {
    NotesBook notes(ctx);
    notes.load(st);
    EXPECT_TRUE(st.rows.isEmpty());
    EXPECT_FALSE(notes.remove(st, boxes)); // nothing selected: refused silently
    EXPECT_TRUE(sink.asked.empty());

    notes.add(st, boxes);
    boxes.title = "";
    boxes.body = "";
    ASSERT_TRUE(notes.save(st, boxes));
    EXPECT_EQ(readAll(data("Notes/20061116164512.not")), "New Note\r\n---\r\n");

    // Same second, second new note: must not overwrite the first.
    boxes.title = "alpha";
    boxes.body = "a";
    ASSERT_TRUE(notes.save(st, boxes));
    EXPECT_EQ(readAll(data("Notes/20061116164513.not")), "alpha\r\na\r\n");
    EXPECT_EQ(rowTexts(st), (QList<QByteArray>{"alpha", "New Note"}));
    EXPECT_EQ(overviewRefreshes, 2);

    // Load and save unchanged: the body gains the line end the box shows.
    notes.click(st, 0, boxes);
    EXPECT_EQ(boxes.title, "alpha");
    EXPECT_EQ(boxes.body, "a\r\n");
    boxes.title = "Zulu";
    ASSERT_TRUE(notes.save(st, boxes));
    EXPECT_EQ(readAll(data("Notes/20061116164513.not")), "Zulu\r\na\r\n\r\n");
    EXPECT_EQ(rowTexts(st), (QList<QByteArray>{"New Note", "Zulu"}));

    notes.click(st, 1, boxes);
    sink.answer = false;
    EXPECT_FALSE(notes.remove(st, boxes));
    sink.answer = true;
    EXPECT_TRUE(notes.remove(st, boxes));
    EXPECT_EQ(sink.asked.back().text, "Are you sure to delete this item?");
    EXPECT_FALSE(QFile::exists(data("Notes/20061116164513.not")));
    EXPECT_EQ(rowTexts(st), QList<QByteArray>{"New Note"});
    EXPECT_EQ(st.selection, -1);
}

TEST_F(ItemListsTest, SameTitlesFollowFileNamesAndForeignFilesAreListed) {
    writeAll(data("Notes/20070101000000.not"), "same\r\n2\r\n");
    writeAll(data("Notes/20060101000000.not"), "Same\r\n1\r\n");
    writeAll(data("Notes/readme.txt"), "Other text\nmore");
    NotesBook notes(ctx);
    notes.load(st);
    EXPECT_EQ(rowTexts(st), (QList<QByteArray>{"Other text", "Same", "same"}));
    notes.click(st, 2, boxes);
    EXPECT_EQ(boxes.body, "2\r\n");
    notes.click(st, 7, boxes); // no such row
    EXPECT_EQ(st.selection, -1);
    EXPECT_TRUE(boxes.title.isEmpty());
}

TEST_F(ItemListsTest, LogbookNewestFirstTwoRowsAndSearchAcrossLines) {
    writeAll(data("Logbook/20050101080000.log"), "a\r\nb\r\n");
    writeAll(data("Logbook/20061116164512.log"), "Team MEETING notes\r\n");
    writeAll(data("Logbook/20060505050505.log"), "other\r\n");
    Logbook log(ctx);
    log.load(st, {});
    EXPECT_EQ(rowTexts(st),
              (QList<QByteArray>{"200611.16 16:45:12", "   Team MEETING notes",
                                 "200605.05 05:05:05", "   other", "200501.01 08:00:00", "   a"}));
    log.click(st, 1, boxes);
    EXPECT_EQ(st.selection, 2);
    EXPECT_EQ(boxes.stamp, "200611.16 16:45:12");
    log.click(st, 0, boxes);
    EXPECT_EQ(st.selection, 2);

    boxes.title = "meeting";
    log.search(st, boxes);
    EXPECT_EQ(rowTexts(st).size(), 2);
    boxes.title = "AB";
    log.search(st, boxes);
    EXPECT_EQ(rowTexts(st), (QList<QByteArray>{"200501.01 08:00:00", "   a"}));

    // A new entry takes the time of LOGADD; saving shows the full list again.
    log.add(st, boxes);
    EXPECT_EQ(st.selection, -2);
    EXPECT_EQ(boxes.stamp, "200611.16 16:45:12");
    clock.advanceSeconds(60);
    boxes.body = "";
    ASSERT_TRUE(log.save(st, boxes));
    // That second's file exists already: the new entry takes the next one.
    EXPECT_EQ(readAll(data("Logbook/20061116164513.log")), "---\r\n");
    EXPECT_EQ(readAll(data("Logbook/20061116164512.log")), "Team MEETING notes\r\n");
    EXPECT_EQ(rowTexts(st).size(), 8);

    // Nothing selected and no stamp: stamped at save time.
    EditBoxes fresh;
    fresh.body = "later";
    ASSERT_TRUE(log.save(st, fresh));
    EXPECT_TRUE(QFile::exists(data("Logbook/20061116164612.log")));
}

// Catches done tasks listed before open ones and a done button offered for a
// task already done or a new one. (Marking done runs in the screen test.)
TEST_F(ItemListsTest, TodoOpenBeforeDoneAndTheDoneButton) {
    writeAll(data("Todo/20060101000000.tod"), "1\r\nanswer letter\r\n");
    writeAll(data("Todo/20060202000000.tod"), "0\r\nbuy milk\r\n");
    TodoList todo(ctx);
    todo.load(st);
    EXPECT_EQ(rowTexts(st), (QList<QByteArray>{"TODO  buy milk", "DONE  answer letter"}));

    todo.click(st, 1, boxes);
    EXPECT_FALSE(boxes.doneButtonVisible);
    todo.click(st, 0, boxes);
    EXPECT_TRUE(boxes.doneButtonVisible);
    todo.add(st, boxes);
    EXPECT_FALSE(boxes.doneButtonVisible);
}

TEST_F(ItemListsTest, ContactNumberingAndFieldOrderRoundTrip) {
    AddressBook book(ctx);
    EXPECT_EQ(book.nextNumber(), 0);
    Contact c;
    book.add(st, c);
    for (int i = 0; i < 16; ++i)
        c.fields[i] = "box" + QByteArray::number(i + 1);
    c.notes = "line one\r\nline two";
    ASSERT_TRUE(book.save(st, c));
    EXPECT_EQ(c.fileName, "0.dat");
    const QByteArray bytes = readAll(book.folder() + "/0.dat");
    EXPECT_TRUE(bytes.contains("box12\r\nbox15\r\nbox16\r\nbox13\r\nbox14\r\n"
                               "108105110101032111110101013010108105110101032116119111\r\n"));
    EXPECT_EQ(book.read("0.dat"), c);

    writeAll(book.folder() + "/7.dat", bytes);
    writeAll(book.folder() + "/notes.txt", bytes);
    writeAll(book.folder() + "/12abc.dat", bytes);
    EXPECT_EQ(book.nextNumber(), 13);
    QFile::remove(book.folder() + "/12abc.dat");
    EXPECT_EQ(book.nextNumber(), 8);

    book.load(st);
    EXPECT_EQ(rowTexts(st).size(), 3);
    book.click(st, 2, c);
    EXPECT_EQ(c.fields[12], "box13");
    EXPECT_TRUE(book.remove(st, c));
    EXPECT_EQ(c, Contact{});
    EXPECT_EQ(rowTexts(st).size(), 2);
}

TEST_F(ItemListsTest, BrokenFilesAreReportedByNameAndTheListStaysUsable) {
    AddressBook book(ctx);
    writeAll(book.folder() + "/0.dat", "only\r\nthree\r\nlines\r\n");
    Contact c;
    book.load(st);
    book.click(st, 0, c);
    ASSERT_EQ(sink.shown.size(), 1u);
    EXPECT_TRUE(sink.shown[0].text.contains("0.dat"));
    EXPECT_EQ(c, Contact{});

    // NUL bytes and a 5 MB line pass through unchanged.
    const QByteArray odd = QByteArray("ti\0tle", 6) + "\r\n" + QByteArray(5 << 20, 'x') + "\r\n";
    writeAll(data("Notes/20060101000000.not"), odd);
    NotesBook notes(ctx);
    notes.load(st);
    notes.click(st, 0, boxes);
    EXPECT_EQ(boxes.title, QByteArray("ti\0tle", 6));
    ASSERT_TRUE(notes.save(st, boxes));
    EXPECT_EQ(readAll(data("Notes/20060101000000.not")), odd + "\r\n");

    // A note deleted behind the program's back: reported, list still loads.
    notes.click(st, 0, boxes);
    QFile::remove(data("Notes/20060101000000.not"));
    sink.shown.clear();
    notes.cancel(st, boxes);
    EXPECT_EQ(sink.shown.size(), 1u);

    if (getuid() != 0) { // root writes anywhere
        ::chmod(QFile::encodeName(data("Notes")).constData(), 0555);
        boxes.title = "x";
        st.selection = -1;
        EXPECT_FALSE(notes.save(st, boxes));
        ::chmod(QFile::encodeName(data("Notes")).constData(), 0755);
    }
}

} // namespace
