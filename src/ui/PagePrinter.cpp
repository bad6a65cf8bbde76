#include "ui/PagePrinter.h"

#include "platform/Cp1252.h"
#include "platform/MessageSink.h"

#include <QAbstractTextDocumentLayout>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QStandardPaths>
#include <QTextCursor>
#include <QTextDocument>

namespace mirel {

namespace {

/// The pages name faces of another desktop; each gets a face of the same
/// kind that a Debian desktop has, so the pages keep their designed look.
void installFontFallbacks() {
    static const bool done = [] {
        QFont::insertSubstitutions(
            QStringLiteral("Haettenschweiler"),
            {QStringLiteral("Bebas Neue"), QStringLiteral("DejaVu Sans Condensed")});
        const QStringList mono = {QStringLiteral("Liberation Mono"),
                                  QStringLiteral("DejaVu Sans Mono")};
        QFont::insertSubstitutions(QStringLiteral("Courier New"), mono);
        QFont::insertSubstitutions(QStringLiteral("Courier"), mono);
        const QStringList serif = {QStringLiteral("Liberation Serif"),
                                   QStringLiteral("DejaVu Serif")};
        QFont::insertSubstitutions(QStringLiteral("Times"), serif);
        QFont::insertSubstitutions(QStringLiteral("Times New Roman"), serif);
        QFont::insertSubstitutions(QStringLiteral("Arial"), {QStringLiteral("Liberation Sans"),
                                                             QStringLiteral("DejaVu Sans")});
        return true;
    }();
    (void)done;
}

// Pages of a long text must not freeze the window.
void serveEvents() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

/// Title at the top left, `right` against the right margin; returns the
/// height the head takes, its gap to the body included.
int drawHead(PrintJob& job, const QString& right) {
    QPainter& p = job.painter();
    const QRect a = job.area();
    p.setFont(PrintJob::font(QStringLiteral("Haettenschweiler"), 24));
    const QFontMetrics fm(p.font(), &job.printer());
    p.drawText(a.left(), a.top() + fm.ascent(), QString::fromLatin1(kPrintTitle));
    p.drawText(a.right() - fm.horizontalAdvance(right), a.top() + fm.ascent(), right);
    return fm.height() + job.printer().resolution() / 4;
}

} // namespace

PrintJob::PrintJob(MessageSink& messages, QWidget* parent, QString pdfName)
    : m_messages(messages), m_parent(parent), m_pdfName(std::move(pdfName)) {}

PrintJob::~PrintJob() {
    if (m_painter.isActive())
        m_painter.end();
}

QFont PrintJob::font(const QString& family, int points) {
    installFontFallbacks();
    QFont f(family, points);
    f.setStyleHint(family == QLatin1String("Courier New") ? QFont::TypeWriter : QFont::AnyStyle);
    return f;
}

bool PrintJob::choosePrinter() {
    const QString forced = qEnvironmentVariable("MIREL_PRINT_PDF");
    if (!forced.isEmpty()) {
        m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        m_printer->setOutputFormat(QPrinter::PdfFormat);
        m_printer->setOutputFileName(forced);
        return true;
    }
    const QPrinterInfo def = QPrinterInfo::defaultPrinter();
    if (!def.isNull()) {
        m_printer = std::make_unique<QPrinter>(def, QPrinter::HighResolution);
        return true;
    }
    if (!m_messages.askYesNo(QStringLiteral("No printer is set up on this computer.\n"
                                            "Save the pages as a PDF file instead?"),
                             kMessageTitle))
        return false;
    const QString docs = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString file = QFileDialog::getSaveFileName(m_parent, QStringLiteral("Save pages as PDF"),
                                                      QDir(docs).filePath(m_pdfName),
                                                      QStringLiteral("PDF files (*.pdf)"));
    if (file.isEmpty())
        return false;
    m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    m_printer->setOutputFormat(QPrinter::PdfFormat);
    m_printer->setOutputFileName(file);
    return true;
}

bool PrintJob::begin(qreal marginInch) {
    if (!choosePrinter())
        return false;
    m_printer->setPageMargins(QMarginsF(marginInch, marginInch, marginInch, marginInch),
                              QPageLayout::Inch);
    if (m_painter.begin(m_printer.get()))
        return true;
    refused();
    return false;
}

QRect PrintJob::area() const {
    return QRect(QPoint(0, 0),
                 m_printer->pageLayout().paintRectPixels(m_printer->resolution()).size());
}

void PrintJob::newPage() {
    m_printer->newPage();
    serveEvents();
}

bool PrintJob::end() {
    const bool ok = m_painter.end() && m_printer->printerState() != QPrinter::Error;
    if (!ok)
        refused();
    return ok;
}

void PrintJob::refused() {
    const QString text = m_printer->outputFormat() == QPrinter::PdfFormat
                             ? QStringLiteral("The pages could not be written to \"%1\".")
                                   .arg(QDir::toNativeSeparators(m_printer->outputFileName()))
                             : QStringLiteral("The printer \"%1\" did not accept the pages.")
                                   .arg(m_printer->printerName());
    m_messages.showMessage(text, kMessageTitle, MessageSink::Icon::Warning);
}

void printAgendaLines(PrintJob& job, const QString& caption, const QList<QByteArray>& lines,
                      const QFont& first, const QFont& next) {
    QPainter& p = job.painter();
    const QRect a = job.area();
    int head = drawHead(job, caption);
    const QFontMetrics fm(first, &job.printer());
    const int pitch = printLineHeight(fm.boundingRect(QStringLiteral("99gZ")).height());
    const int perPage = printLinesPerPage(a.height(), head, pitch);
    p.setFont(first);
    int row = 0;
    for (const QByteArray& line : lines) {
        if (row == perPage) {
            job.newPage();
            head = drawHead(job, caption);
            p.setFont(next);
            row = 0;
        }
        p.drawText(a.left(), a.top() + head + row * pitch + fm.ascent(), Cp1252::toUnicode(line));
        ++row;
    }
}

void printMonthSheet(PrintJob& job, const QString& printName, const QImage& picture,
                     const QList<MonthSheetRow>& rows) {
    QPainter& p = job.painter();
    const QRect a = job.area();
    const int dpi = job.printer().resolution();
    int top = a.top() + drawHead(job, printName.toUpper());
    if (!picture.isNull() && picture.width() > 0) {
        // Across the printable width, proportions kept; a picture taller
        // than half the page is narrowed instead, so the days keep room.
        QSize size = picture.size().scaled(a.width(), a.height() / 2, Qt::KeepAspectRatio);
        p.drawImage(QRect(QPoint(a.left() + (a.width() - size.width()) / 2, top), size), picture);
        top += size.height() + dpi / 6;
    }
    const int bottom = a.bottom() - dpi / 4;
    const int pitch = std::max(1, (bottom - top) / 16);
    const QFont dayFont = PrintJob::font(QStringLiteral("Haettenschweiler"), 12);
    const QFont noteFont = PrintJob::font(QStringLiteral("Arial"), 10);
    const QFontMetrics dm(dayFont, &job.printer());
    const QFontMetrics nm(noteFont, &job.printer());
    const int numberWidth = dm.horizontalAdvance(QStringLiteral("99"));
    const int limit = a.width() / 2 - dm.horizontalAdvance(QStringLiteral("9999"));
    const auto width = [&nm](QByteArrayView t) {
        return nm.horizontalAdvance(Cp1252::toUnicode(t.toByteArray()));
    };
    const auto drawDay = [&](int x, int y, int day, const QByteArray& note) {
        const QString n = QString::number(day);
        p.setFont(dayFont);
        p.drawText(x + numberWidth - dm.horizontalAdvance(n), y, n);
        if (note.isEmpty())
            return;
        p.setFont(noteFont);
        p.drawText(x + numberWidth + dpi / 12, y,
                   Cp1252::toUnicode(fitBelowWidth(note, limit, width)));
    };
    for (int r = 0; r < rows.size(); ++r) {
        const int y = top + r * pitch + dm.ascent();
        if (rows[r].leftDay > 0)
            drawDay(a.left(), y, rows[r].leftDay, rows[r].leftNote);
        if (rows[r].rightDay > 0)
            drawDay(a.left() + a.width() / 2, y, rows[r].rightDay, rows[r].rightNote);
    }
}

void printMessagePages(PrintJob& job, const QString& summary) {
    QPrinter& printer = job.printer();
    const QRect a = job.area();
    QTextDocument doc;
    doc.documentLayout()->setPaintDevice(&printer);
    doc.setDocumentMargin(0);
    doc.setPageSize(a.size());
    QTextOption option = doc.defaultTextOption();
    option.setTabStopDistance(48); // half an inch at 96 dots per inch, as image sizes
    doc.setDefaultTextOption(option);

    QTextCursor c(&doc);
    QTextCharFormat title;
    title.setFont(PrintJob::font(QStringLiteral("Haettenschweiler"), 12));
    c.insertText(QString::fromLatin1(kPrintTitle), title);
    // The rule: a one-pixel-high black picture stretched across the page.
    QImage rule(3000, 1, QImage::Format_Mono);
    rule.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    rule.fill(0);
    doc.addResource(QTextDocument::ImageResource, QUrl(QStringLiteral("mirel:rule")), rule);
    QTextImageFormat line;
    line.setName(QStringLiteral("mirel:rule"));
    // Image sizes are given at 96 dots per inch; the layout scales them to
    // the printer. One dot high is the rule's 15 twips.
    line.setWidth(a.width() * 96.0 / printer.resolution());
    line.setHeight(1);
    c.insertBlock();
    c.insertImage(line);
    QTextCharFormat body;
    body.setFont(PrintJob::font(QStringLiteral("Courier New"), 10));
    c.insertBlock(QTextBlockFormat(), body);
    QString text = summary;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
    c.insertText(text, body);

    QPainter& p = job.painter();
    const int pages = doc.pageCount();
    for (int i = 0; i < pages; ++i) {
        if (i > 0)
            job.newPage();
        p.save();
        p.translate(a.left(), a.top() - i * a.height());
        doc.drawContents(&p, QRectF(0, i * a.height(), a.width(), a.height()));
        p.restore();
    }
}

} // namespace mirel
