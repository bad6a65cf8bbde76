// Pages, the dated record head and the month sheets are read back from a
// real print in the whole-program print test; these are the edges it misses.
#include "organiser/AgendaPrint.h"

#include <gtest/gtest.h>

using namespace mirel;

// Catches weekly items printing From/To or their days out of order, a long
// word that never finds room (endless blank lines), words cut at the line's
// end, CR not breaking or LF shown, an empty list printing no page; rows of
// short months spilling onto day 30/31, notes not trimmed, and a cut that
// keeps a start as wide as the limit.
TEST(AgendaPrintTest, RecordLinesWrappingMonthRowsAndFittedText) {
    AgendaEditorState weekly{{}, {}, false, {true, false, false, false, true}, 0, ""};
    EXPECT_EQ(itemRecordLines(weekly).first(), "Days....: Monday Friday ");
    EXPECT_EQ(printPageCount(0, 18), 1);

    const QList<QByteArray> solid = wrapAboutText(QByteArray(200, 'x'));
    ASSERT_EQ(solid.size(), 3);
    EXPECT_TRUE(solid[1].startsWith("          x") && solid[2].startsWith("          x"));
    EXPECT_EQ(solid.join().count('x'), 200);
    EXPECT_LT(wrapAboutText(QByteArray(100000, 'y')).size(), 1500);

    const QList<QByteArray> words = wrapAboutText(QByteArray("word ").repeated(40) + "a\r\nb");
    for (const QByteArray& l : words) {
        EXPECT_LE(l.size(), 81);
        EXPECT_FALSE(l.contains("wor ") || l.startsWith("          ord"));
    }
    EXPECT_EQ(words.last(), "          b");
    EXPECT_EQ(words[words.size() - 2].right(2), " a");

    std::array<QByteArray, 31> notes;
    notes[16] = "  seventeenth  ";
    for (const auto& [days, lastRow] : {std::pair{28, 11}, {29, 12}, {30, 13}, {31, 14}}) {
        const QList<MonthSheetRow> rows = monthSheetRows(days, notes);
        ASSERT_EQ(rows.size(), 16);
        EXPECT_EQ(rows[lastRow].rightDay, days) << days;
        EXPECT_EQ(rows[lastRow + 1].rightDay, 0) << days;
        EXPECT_EQ(rows[0].rightNote, "seventeenth");
    }
    const auto width = [](QByteArrayView t) { return int(t.size()) * 10; };
    EXPECT_EQ(fitBelowWidth("abcdefgh", 55, width), "abcde");
    EXPECT_EQ(fitBelowWidth("abcdefgh", 50, width), "abcd");
}
