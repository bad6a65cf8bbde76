#include "organiser/AgendaPrint.h"

namespace mirel {

namespace {

constexpr qsizetype kWrapWidth = 80;
const QByteArray kIndent(10, ' ');

} // namespace

QList<QByteArray> wrapAboutText(QByteArrayView text) {
    QList<QByteArray> out;
    QByteArray line = "About...: ";
    QByteArray word;
    // A line holding nothing but its label or indent cannot give the word
    // room by breaking before it; the word itself is cut there instead.
    qsizetype bare = line.size();
    for (const char c : text) {
        if (line.size() + word.size() > kWrapWidth) {
            if (line.size() == bare) {
                out.append(line + word);
                word.clear();
            } else {
                out.append(line);
            }
            line = kIndent;
            bare = line.size();
        }
        if (c == ' ') {
            line += word + ' ';
            word.clear();
        } else if (c == '\r') {
            out.append(line + word);
            word.clear();
            line = kIndent;
            bare = line.size();
        } else if (c != '\n') {
            word += c;
        }
    }
    out.append(line + word);
    return out;
}

QList<QByteArray> itemRecordLines(const AgendaEditorState& ed) {
    static const char* const kDays[7] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                         "Friday", "Saturday", "Sunday"};
    QList<QByteArray> lines;
    if (ed.dated) {
        lines.append("From....: " + ed.start.toString(QStringLiteral("yyyyMMddHHmm")).toLatin1());
        lines.append("To......: " + ed.end.toString(QStringLiteral("yyyyMMddHHmm")).toLatin1());
    } else {
        QByteArray days = "Days....: ";
        for (int i = 0; i < 7; ++i)
            if (ed.weekdays[size_t(i)])
                days += QByteArray(kDays[i]) + ' ';
        lines.append(days);
    }
    lines.append("Priority: " + QByteArray::number(ed.priority));
    lines.append(wrapAboutText(ed.text));
    return lines;
}

int printLineHeight(int sampleHeight) {
    return sampleHeight * 12 / 10;
}

int printLinesPerPage(int printableHeight, int headHeight, int lineHeight) {
    if (lineHeight <= 0)
        return 1;
    return std::max(1, (printableHeight - headHeight) / lineHeight);
}

int printPageCount(qsizetype lines, int linesPerPage) {
    const qsizetype per = std::max(1, linesPerPage);
    return int(std::max<qsizetype>(1, (lines + per - 1) / per));
}

QList<MonthSheetRow> monthSheetRows(int days, const std::array<QByteArray, 31>& notes) {
    days = std::clamp(days, 0, 31);
    QList<MonthSheetRow> rows;
    for (int r = 0; r < 16; ++r) {
        MonthSheetRow row;
        if (r + 1 <= days) {
            row.leftDay = r + 1;
            row.leftNote = notes[size_t(r)];
        }
        if (r + 17 <= days) {
            row.rightDay = r + 17;
            row.rightNote = notes[size_t(r + 16)].trimmed();
        }
        rows.append(row);
    }
    return rows;
}

QByteArray fitBelowWidth(const QByteArray& text, int limit,
                         const std::function<int(QByteArrayView)>& width) {
    if (width(text) < limit)
        return text;
    // Invariant: the first `lo` characters fit, the first `hi` do not.
    qsizetype lo = 0, hi = text.size();
    while (hi - lo > 1) {
        const qsizetype mid = lo + (hi - lo) / 2;
        if (width(QByteArrayView(text).first(mid)) < limit)
            lo = mid;
        else
            hi = mid;
    }
    return text.left(lo);
}

} // namespace mirel
