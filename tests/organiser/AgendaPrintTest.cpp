#include "organiser/AgendaPrint.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

QDateTime at(int h, int m) {
    return QDateTime(QDate(2006, 11, 16), QTime(h, m));
}

} // namespace

// Catches: wrong label or date digits, weekly items printing From/To, the
// weekday order, and a long word that never finds room (endless blank lines).
TEST(AgendaPrintTest, RecordLinesAndWrapping) {
    AgendaEditorState dated{at(14, 30), at(15, 30), true, {}, 3, "Dentist"};
    EXPECT_EQ(itemRecordLines(dated),
              (QList<QByteArray>{"From....: 200611161430", "To......: 200611161530", "Priority: 3",
                                 "About...: Dentist"}));
    AgendaEditorState weekly{at(9, 0), at(10, 0), false, {true, false, false, false, true}, 0, ""};
    EXPECT_EQ(itemRecordLines(weekly).first(), "Days....: Monday Friday ");

    const QList<QByteArray> solid = wrapAboutText(QByteArray(200, 'x'));
    ASSERT_EQ(solid.size(), 3);
    EXPECT_TRUE(solid[1].startsWith("          x") && solid[2].startsWith("          x"));
    EXPECT_EQ(solid.join().count('x'), 200);

    // Words move whole to the next line; CR breaks, LF vanishes.
    const QList<QByteArray> words = wrapAboutText(QByteArray("word ").repeated(40) + "a\r\nb");
    for (const QByteArray& l : words) {
        EXPECT_LE(l.size(), 81);
        EXPECT_FALSE(l.contains("wor ") || l.startsWith("          ord"));
    }
    EXPECT_EQ(words.last(), "          b");
    EXPECT_EQ(words[words.size() - 2].right(2), " a");
    EXPECT_LT(wrapAboutText(QByteArray(100000, 'y')).size(), 1500);
}

// Catches: an off-by-one in lines per page or page count, an empty list
// printing no page, and rows of short months spilling onto day 30/31.
TEST(AgendaPrintTest, PagesAndMonthRows) {
    EXPECT_EQ(printLinesPerPage(1000, 100, 50), 18);
    EXPECT_EQ(printPageCount(200, 18), 12);
    EXPECT_EQ(printPageCount(0, 18), 1);

    std::array<QByteArray, 31> notes;
    notes[0] = "first";
    notes[16] = "  seventeenth  ";
    for (const auto& [days, lastRight, lastRow] :
         {std::tuple{28, 28, 11}, {29, 29, 12}, {30, 30, 13}, {31, 31, 14}}) {
        const QList<MonthSheetRow> rows = monthSheetRows(days, notes);
        ASSERT_EQ(rows.size(), 16);
        EXPECT_EQ(rows[lastRow].rightDay, lastRight) << days;
        EXPECT_EQ(rows[lastRow + 1].rightDay, 0) << days;
        EXPECT_EQ(rows[0].leftNote, "first");
        EXPECT_EQ(rows[0].rightNote, "seventeenth");
    }

    // Ten units a character: the longest start strictly below the limit.
    const auto width = [](QByteArrayView t) { return int(t.size()) * 10; };
    EXPECT_EQ(fitBelowWidth("abcdefgh", 55, width), "abcde");
    EXPECT_EQ(fitBelowWidth("abcdefgh", 50, width), "abcd");
    EXPECT_EQ(fitBelowWidth("abc", 55, width), "abc");
}
