#pragma once
// Printed pages: one command is one print job. A job goes to the PDF file
// named by the environment variable MIREL_PRINT_PDF when it is set (scripts
// and tests), else to the system's default printer without asking, else -
// with no printer set up - to a PDF file the user chooses after being told.
// Every failure is told once; nothing is written where the user did not ask.
#include "organiser/AgendaPrint.h"

#include <QFont>
#include <QImage>
#include <QPainter>
#include <memory>

class QPrinter;
class QWidget;

namespace mirel {

class MessageSink;

/// One print job on a printer or in a PDF file.
class PrintJob {
public:
    /// pdfName: the file name proposed in the documents folder when the
    /// pages are saved as a PDF for lack of a printer.
    PrintJob(MessageSink& messages, QWidget* parent, QString pdfName);
    ~PrintJob();

    /// Chooses the printer and starts the first page; false when nothing
    /// is to be printed (declined, or the job could not start: already told).
    /// marginInch: the margin kept on every side of the paper.
    bool begin(qreal marginInch);
    QPainter& painter() { return m_painter; }
    QPrinter& printer() { return *m_printer; }
    /// The area to draw in, in the painter's units.
    QRect area() const;
    void newPage();
    /// Ends the job; false (and told) when the printer or file refused it.
    bool end();

    /// A font asked for by the name the pages use, falling back to a face
    /// of the same kind when that name is not installed.
    static QFont font(const QString& family, int points);

private:
    bool choosePrinter();
    void refused();

    MessageSink& m_messages;
    QWidget* m_parent;
    QString m_pdfName;
    std::unique_ptr<QPrinter> m_printer;
    QPainter m_painter;
};

/// The agenda list or an item's record: the head on every page, the lines
/// in `first` on page one and in `next` on the following pages.
void printAgendaLines(PrintJob& job, const QString& caption, const QList<QByteArray>& lines,
                      const QFont& first, const QFont& next);

/// One month sheet on the job's current page: head with the print name,
/// the picture (skipped when null) and the sixteen day rows.
void printMonthSheet(PrintJob& job, const QString& printName, const QImage& picture,
                     const QList<MonthSheetRow>& rows);

/// A message summary under the title and a rule on the first page, in the
/// summary font, spilling onto further pages.
void printMessagePages(PrintJob& job, const QString& summary);

} // namespace mirel
