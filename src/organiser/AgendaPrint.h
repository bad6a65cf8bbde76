#pragma once
// What the printed pages of the organiser hold, worked out without a
// printer: the labelled record of one agenda item, the wrapping of its text,
// the page breaks of a list, and the sixteen rows of a month sheet. The
// drawing side measures text; these functions only count.
#include "organiser/AgendaEditor.h"

#include <QList>
#include <array>
#include <functional>

namespace mirel {

/// The title at the head of every printed page.
inline constexpr char kPrintTitle[] = "TORVEX TERMINAL";

/// "About...: " and the text wrapped at 80 characters, every further line
/// starting with ten spaces. A CR starts a new line; LF is ignored.
QList<QByteArray> wrapAboutText(QByteArrayView text);

/// From/To (dated) or Days (weekly), Priority and About lines of the item
/// the editor holds.
QList<QByteArray> itemRecordLines(const AgendaEditorState& ed);

/// The line pitch for text whose sample "99gZ" is sampleHeight high.
int printLineHeight(int sampleHeight);
/// Whole lines between the head and the bottom of the printable area; at
/// least one, so a tiny page still makes progress.
int printLinesPerPage(int printableHeight, int headHeight, int lineHeight);
/// Pages for a number of lines; an empty list still prints its head.
int printPageCount(qsizetype lines, int linesPerPage);

/// One row of a month sheet: a day of the first half on the left and, when
/// the month has it, the day sixteen later on the right (0 = none).
struct MonthSheetRow {
    int leftDay = 0;
    QByteArray leftNote;
    int rightDay = 0;
    QByteArray rightNote;
};
/// The sixteen rows of a month of `days` days; notes[0] belongs to day 1.
/// Right-hand notes lose their surrounding spaces.
QList<MonthSheetRow> monthSheetRows(int days, const std::array<QByteArray, 31>& notes);

/// The longest start of `text` whose measured width is below `limit`: the
/// text shortened at its end one character at a time, found by halving so a
/// note of any length costs only a few measurements.
QByteArray fitBelowWidth(const QByteArray& text, int limit,
                         const std::function<int(QByteArrayView)>& width);

} // namespace mirel
