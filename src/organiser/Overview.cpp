#include "organiser/Overview.h"

#include "organiser/CalendarBook.h"
#include "organiser/TextFile.h"
#include "platform/IniFile.h"
#include "settings/CommaList.h"
#include "settings/TripletCodec.h"

#include <QDir>

#include <limits>

namespace mirel {
namespace {

// Sets the header row at `at` to its caption followed by "(count)".
void closeSection(SortedList& rows, qsizetype at, qsizetype count) {
    rows.setText(at, rows.text(at) + '(' + QByteArray::number(count) + ')');
}

// The code of a row: the section's digit followed by the row's number, read
// as one number; 0 when that does not read as an int (a negative number, or
// one too long), as reading the joined digits would give.
int rowCode(int section, qint64 n) {
    if (n < 0)
        return 0;
    qint64 scale = 10;
    while (scale <= n)
        scale *= 10;
    const qint64 code = section * scale + n;
    return code > std::numeric_limits<int>::max() ? 0 : int(code);
}

} // namespace

OverviewTexts Overview::readTexts() const {
    QByteArray bytes;
    IniFile::load(m_ctx.folders.skinFile(), bytes);
    const IniDocument skin(bytes);
    OverviewTexts t;
    t.calendar = skin.value("OVERVIEW", "textA").value_or("");
    t.todo = skin.value("OVERVIEW", "textB").value_or("");
    t.agenda = skin.value("OVERVIEW", "textC").value_or("");
    t.listSound = skin.value("Overview", "load").value_or("");
    const char* keys[4] = {"defin", "defout", "defsnd", "defdel"};
    for (int i = 0; i < 4; ++i)
        if (const auto v = skin.value("EMAIL", keys[i]))
            t.mailFolders[i] = *v;
    return t;
}

void Overview::refresh(const OverviewTexts& texts, const AgendaLists& agenda, SortedList& rows,
                       SortedList& lstSorted2) const {
    rows.clear();

    qsizetype header = rows.add("  " + texts.agenda, 1);
    qsizetype count = 0;
    for (const ListEntry& e : agenda.lstAgenda.entries()) {
        if (e.text.contains(kFieldSep)) {
            rows.add(entryOccurrenceText(e.text, "    "), rowCode(1, e.itemData));
            ++count;
        } else if (!e.text.isEmpty()) {
            rows.add("  " + e.text, 1);
        }
    }
    closeSection(rows, header, count);

    header = rows.add("  " + texts.calendar, 3);
    count = 0;
    CalendarBook calendar(m_ctx);
    QByteArray bytes;
    IniFile::load(calendar.path(), bytes);
    const IniDocument cal(bytes);
    const QDate today = m_ctx.clock.now().date();
    for (int k = 0; k < 10; ++k) {
        const QDate day = today.addDays(k);
        const QByteArray key = CalendarBook::dayKey(day.month(), day.day());
        const QByteArray v = cal.value("CALENDAR", key).value_or("");
        if (v.isEmpty())
            continue;
        rows.add("  " + day.toString(QStringLiteral("yyyyMM.dd")).toLatin1() + ' ' +
                     decodeTriplets(v),
                 ("3" + key).toInt());
        ++count;
    }
    closeSection(rows, header, count);

    header = rows.add("E-Mail  ", 4);
    count = 0;
    const QStringList folders = QDir(m_ctx.folders.path(QStringLiteral("\\email")))
                                    .entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& f : folders) {
        const long n = leadingNumber(f.toLatin1());
        const QByteArray name =
            n >= 0 && n <= 3 && f == QString::number(n) ? texts.mailFolders[n] : f.toLocal8Bit();
        rows.add("  " + name, 400000 + int(n % 100000));
        ++count;
    }
    closeSection(rows, header, count);

    header = rows.add("  " + texts.todo, 7);
    lstSorted2.clear();
    const QString dir = m_ctx.itemFolder("Todo");
    QList<ListEntry> open;
    for (const QString& f : TextFile::listFolder(dir)) {
        const auto lines = TextFile::readHead(dir + QLatin1Char('/') + f, 2);
        if (lines && lines->value(0) == "0")
            open.append({joined({lines->value(0), lines->value(1), QByteArrayView(&kFieldSep, 1),
                                 f.toLocal8Bit()}),
                         0});
    }
    lstSorted2.addAll(open);
    for (qsizetype k = 0; k < lstSorted2.size(); ++k) {
        // The task's first line, without the leading "0" of an open task.
        const QByteArray& entry = lstSorted2.entries()[k].text;
        const qsizetype sep = entry.indexOf(kFieldSep);
        const QByteArrayView head = QByteArrayView(entry).first(sep < 0 ? entry.size() : sep);
        rows.add(joined({"  ", head.size() > 1 ? head.sliced(1) : QByteArrayView()}),
                 rowCode(7, k));
    }
    closeSection(rows, header, lstSorted2.size());
}

OverviewTarget Overview::target(int code) {
    OverviewTarget t;
    const QByteArray digits = QByteArray::number(code);
    const QByteArray rest = digits.mid(1);
    switch (digits.isEmpty() ? '0' : digits[0]) {
    case '1':
        t.screen = OverviewTarget::Agenda;
        t.agendaItem = rest.isEmpty() ? -1 : rest.toInt();
        break;
    case '3':
        t.screen = OverviewTarget::Calendar;
        if (rest.size() == 4) {
            t.month = rest.left(2).toInt();
            t.day = rest.right(2).toInt();
        }
        break;
    case '4':
        t.screen = OverviewTarget::Email;
        t.mailFolder = rest.isEmpty() ? -1 : rest.toInt();
        break;
    case '7':
        t.screen = OverviewTarget::Todo;
        t.task = rest.isEmpty() ? -1 : rest.toInt();
        break;
    default:
        break;
    }
    return t;
}

} // namespace mirel
