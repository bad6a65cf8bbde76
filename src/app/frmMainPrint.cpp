// The main window's print commands: they gather what the screen shows and
// hand it to the page printer as one job each.
#include "app/frmMain.h"

#include "mail/mime/MailDisplayText.h"
#include "mail/view/EmailScreen.h"
#include "organiser/OrganiserScreen.h"
#include "platform/Cp1252.h"
#include "ui/PagePrinter.h"

#include <QLocale>

namespace mirel {

void frmMain::printAgenda(bool wholeList) {
    if (!m_organiser || state().currentScreen != "Agenda") {
        log("Agenda printing needs the agenda screen");
        return;
    }
    QList<QByteArray> lines;
    if (wholeList) {
        for (const ListEntry& row : m_organiser->shared().state.rows.entries())
            lines.append(row.text);
    } else {
        lines = itemRecordLines(m_organiser->agenda().editorNow());
    }
    PrintJob job(m_messages, this,
                 wholeList ? QStringLiteral("agenda.pdf") : QStringLiteral("agenda item.pdf"));
    if (!job.begin(0.5))
        return;
    const QString caption = Cp1252::toUnicode(m_organiser->texts().agenda);
    if (wholeList)
        printAgendaLines(job, caption, lines, PrintJob::font(QStringLiteral("Courier New"), 12),
                         PrintJob::font(QStringLiteral("Times"), 12));
    else {
        const QFont body = PrintJob::font(QStringLiteral("Courier New"), 10);
        printAgendaLines(job, caption, lines, body, body);
    }
    if (job.end())
        log(wholeList ? "Agenda list printed" : "Agenda item printed");
}

void frmMain::printMonths(int first, int last) {
    if (!m_organiser)
        return;
    const CalendarBook& book = m_organiser->calendar().book();
    PrintJob job(m_messages, this,
                 first == last ? QStringLiteral("month %1.pdf").arg(first, 2, 10, QChar(u'0'))
                               : QStringLiteral("calendar.pdf"));
    if (!job.begin(0.5))
        return;
    for (int m = first; m <= last; ++m) {
        if (m > first)
            job.newPage();
        const MonthView v = book.showMonth(m);
        const QByteArray key = "month" + QByteArray::number(m).rightJustified(2, '0');
        const QString name = m_ini.ReadIniKey("CALENDAR", key, m_folders.skinFile())
                                 ? Cp1252::toUnicode(m_ini.IniValue)
                                 : QLocale::c().monthName(m);
        // A missing or broken picture loads as a null image: the sheet goes without it.
        printMonthSheet(job, name, QImage(v.picture), monthSheetRows(v.days, v.notes));
    }
    if (job.end())
        log("Month sheets printed");
}

void frmMain::printMessage() {
    if (!m_messages.askYesNo(QStringLiteral("Print page?"), kMessageTitle))
        return;
    QString summary;
    // With no message shown the page holds only the title and the rule.
    if (m_email && !m_email->view().current().summary.isEmpty()) {
        const ShownMessage& m = m_email->view().current();
        // The summary's layout, with each part read as the screen shows it.
        summary =
            QStringLiteral("From:\t\t%1\nTo: \t\t%2\nSubject:\t\t%3\nDate:\t\t%4\n \n")
                .arg(MailDisplayText::decodeHeader(m.from), MailDisplayText::decodeHeader(m.to),
                     MailDisplayText::decodeHeader(m.subject),
                     MailDisplayText::decodeHeader(m.date));
        summary += MailDisplayText::decodeBody(m.text, m.charset) + QStringLiteral("\n\n");
        if (!m.attachmentNames.isEmpty()) {
            summary += QStringLiteral("Attachments:\n");
            for (const QByteArray& name : m.attachmentNames)
                summary += MailDisplayText::decodeHeader(name) + u'\n';
        }
    }
    PrintJob job(m_messages, this, QStringLiteral("message.pdf"));
    if (!job.begin(1.0))
        return;
    printMessagePages(job, summary);
    if (job.end())
        log("Message printed");
}

} // namespace mirel
