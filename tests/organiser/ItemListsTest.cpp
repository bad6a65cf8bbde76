#include "OrganiserFixture.h"

#include "organiser/AddressBook.h"
#include "organiser/Logbook.h"
#include "organiser/NotesBook.h"
#include "organiser/TodoList.h"

#include <QDir>

using namespace mirel;
using namespace mirel::test;

namespace {

class ItemListsTest : public OrganiserFixture {
protected:
    OrganiserState st;
    EditBoxes boxes;

    QList<QByteArray> rows() const { return texts(st.rows); }
};

// Catches same titles listed in a random order, files of other programs
// left out, a click past the end keeping the old selection, a delete with
// nothing selected that asks anyway, an empty note saved without its default
// title and body, a second note of the same second overwriting the first,
// and rows not sorted by title after an edit. (Deleting, refused or not,
// runs in the screen test.)
TEST_F(ItemListsTest, NotesListSaveAndEdit) {
    writeAll(data("Notes/20070101000000.not"), "same\r\n2\r\n");
    writeAll(data("Notes/20060101000000.not"), "Same\r\n1\r\n");
    writeAll(data("Notes/readme.txt"), "Other text\nmore");
    NotesBook notes(ctx);
    notes.load(st);
    EXPECT_EQ(rows(), (QList<QByteArray>{"Other text", "Same", "same"}));
    notes.click(st, 2, boxes);
    EXPECT_EQ(boxes.body, "2\r\n");
    notes.click(st, 7, boxes);
    EXPECT_EQ(st.selection, -1);
    EXPECT_TRUE(boxes.title.isEmpty());
    EXPECT_FALSE(notes.remove(st, boxes)); // nothing selected: refused silently
    EXPECT_TRUE(sink.asked.empty());

    notes.add(st, boxes);
    ASSERT_TRUE(notes.save(st, boxes));
    EXPECT_EQ(readAll(data("Notes/20061116164512.not")), "New Note\r\n---\r\n");
    boxes.title = "alpha";
    boxes.body = "a";
    ASSERT_TRUE(notes.save(st, boxes));
    EXPECT_EQ(readAll(data("Notes/20061116164513.not")), "alpha\r\na\r\n");
    EXPECT_EQ(rows(), (QList<QByteArray>{"alpha", "New Note", "Other text", "Same", "same"}));
    EXPECT_EQ(overviewRefreshes, 2);

    notes.click(st, 0, boxes);
    boxes.title = "Zulu";
    ASSERT_TRUE(notes.save(st, boxes));
    EXPECT_EQ(rows(), (QList<QByteArray>{"New Note", "Other text", "Same", "same", "Zulu"}));
}

// Catches the logbook listed oldest first, a click on an entry's second row
// finding no entry, a search that is case-sensitive or reads only the first
// line, a new entry stamped at save time instead of when it was begun, and
// an entry of the same second overwriting the one before.
TEST_F(ItemListsTest, LogbookNewestFirstTwoRowsAndSearchAcrossLines) {
    writeAll(data("Logbook/20050101080000.log"), "a\r\nb\r\n");
    writeAll(data("Logbook/20061116164512.log"), "Team MEETING notes\r\n");
    writeAll(data("Logbook/20060505050505.log"), "other\r\n");
    Logbook log(ctx);
    log.load(st, {});
    EXPECT_EQ(rows(),
              (QList<QByteArray>{"200611.16 16:45:12", "   Team MEETING notes",
                                 "200605.05 05:05:05", "   other", "200501.01 08:00:00", "   a"}));
    log.click(st, 1, boxes);
    EXPECT_EQ(st.selection, 2);
    EXPECT_EQ(boxes.stamp, "200611.16 16:45:12");

    boxes.title = "AB";
    log.search(st, boxes);
    EXPECT_EQ(rows(), (QList<QByteArray>{"200501.01 08:00:00", "   a"}));

    log.add(st, boxes);
    clock.advanceSeconds(60);
    boxes.body = "";
    ASSERT_TRUE(log.save(st, boxes));
    EXPECT_EQ(readAll(data("Logbook/20061116164513.log")), "---\r\n");
    EXPECT_EQ(readAll(data("Logbook/20061116164512.log")), "Team MEETING notes\r\n");
    EXPECT_EQ(rows().size(), 8);
}

// Catches done tasks listed before open ones and a done button offered for a
// task already done or a new one. (Marking done runs in the screen test.)
TEST_F(ItemListsTest, TodoOpenBeforeDoneAndTheDoneButton) {
    writeAll(data("Todo/20060101000000.tod"), "1\r\nanswer letter\r\n");
    writeAll(data("Todo/20060202000000.tod"), "0\r\nbuy milk\r\n");
    TodoList todo(ctx);
    todo.load(st);
    EXPECT_EQ(rows(), (QList<QByteArray>{"TODO  buy milk", "DONE  answer letter"}));
    todo.click(st, 1, boxes);
    EXPECT_FALSE(boxes.doneButtonVisible);
    todo.click(st, 0, boxes);
    todo.add(st, boxes);
    EXPECT_FALSE(boxes.doneButtonVisible);
}

// Catches the contact file's odd field order (12, 15, 16, 13, 14) or the
// notes' digit encoding lost on a round trip, a next number that counts
// files instead of following the highest plain number, and a clicked
// contact not filling the boxes or not deleted.
TEST_F(ItemListsTest, ContactNumberingAndFieldOrderRoundTrip) {
    AddressBook book(ctx);
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
    book.click(st, 2, c);
    EXPECT_EQ(c.fields[12], "box13");
    EXPECT_TRUE(book.remove(st, c));
    EXPECT_EQ(rows().size(), 2);
}

// Catches a broken contact file shown without its name or half-filled, NUL
// bytes or a huge line cut, and a note deleted behind the program's back
// passing in silence. (A failed save runs in the whole program.)
TEST_F(ItemListsTest, BrokenFilesAreReportedByNameAndTheListStaysUsable) {
    AddressBook book(ctx);
    writeAll(book.folder() + "/0.dat", "only\r\nthree\r\nlines\r\n");
    Contact c;
    book.load(st);
    book.click(st, 0, c);
    ASSERT_EQ(sink.shown.size(), 1u);
    EXPECT_TRUE(sink.shown[0].text.contains("0.dat"));
    EXPECT_EQ(c, Contact{});

    const QByteArray odd = QByteArray("ti\0tle", 6) + "\r\n" + QByteArray(5 << 20, 'x') + "\r\n";
    writeAll(data("Notes/20060101000000.not"), odd);
    NotesBook notes(ctx);
    notes.load(st);
    notes.click(st, 0, boxes);
    ASSERT_TRUE(notes.save(st, boxes));
    EXPECT_EQ(readAll(data("Notes/20060101000000.not")), odd + "\r\n");

    notes.click(st, 0, boxes);
    QFile::remove(data("Notes/20060101000000.not"));
    sink.shown.clear();
    notes.cancel(st, boxes);
    EXPECT_EQ(sink.shown.size(), 1u);
}

} // namespace
