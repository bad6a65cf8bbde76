#include "mail/compose/frmEmailHtml.h"

#include "mail/compose/ComposePresets.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <array>

namespace mirel {
namespace {

constexpr std::array<qreal, 7> kPoints = {7.5, 10, 12, 13.5, 18, 24, 36};

QByteArray attr(const QString& value) {
    return '"' + ComposeRules::htmlText(value) + '"';
}

QByteArray colourName(const QColor& c) {
    return c.name(QColor::HexRgb).toUpper().toLatin1();
}

// One run of text with one format, wrapped innermost-last so the tags nest.
QByteArray fragmentHtml(const QTextFragment& f) {
    const QTextCharFormat fmt = f.charFormat();
    if (fmt.isImageFormat())
        return "<IMG SRC=" + attr(fmt.toImageFormat().name()) + '>';
    QByteArray open, close;
    QByteArray font;
    const QStringList families = fmt.fontFamilies().toStringList();
    if (!families.isEmpty() &&
        families.first().compare(QString::fromLatin1(frmEmailHtml::kDefaultFont),
                                 Qt::CaseInsensitive) != 0)
        font += " FACE=" + attr(families.first());
    // Typed text carries a point size; quoted HTML read back a size step.
    if (fmt.hasProperty(QTextFormat::FontPointSize) ||
        fmt.hasProperty(QTextFormat::FontSizeAdjustment)) {
        const int size = fmt.hasProperty(QTextFormat::FontPointSize)
                             ? frmEmailHtml::htmlSize(fmt.fontPointSize())
                             : qBound(1,
                                      frmEmailHtml::kDefaultSize +
                                          fmt.intProperty(QTextFormat::FontSizeAdjustment),
                                      7);
        if (size != frmEmailHtml::kDefaultSize)
            font += " SIZE=" + QByteArray::number(size);
    }
    if (fmt.hasProperty(QTextFormat::ForegroundBrush) &&
        fmt.foreground().color() != QColor(Qt::white) && fmt.foreground().style() != Qt::NoBrush &&
        !fmt.isAnchor()) // the reader colours its links itself
        font += " COLOR=" + colourName(fmt.foreground().color());
    if (fmt.isAnchor() && !fmt.anchorHref().isEmpty()) {
        open += "<A HREF=" + attr(fmt.anchorHref()) + '>';
        close.prepend("</A>");
    }
    if (!font.isEmpty()) {
        open += "<FONT" + font + '>';
        close.prepend("</FONT>");
    }
    const auto wrap = [&](bool on, const char* tag) {
        if (!on)
            return;
        open += QByteArray("<") + tag + '>';
        close.prepend(QByteArray("</") + tag + '>');
    };
    wrap(fmt.fontWeight() >= QFont::Bold, "B");
    wrap(fmt.fontItalic(), "I");
    wrap(fmt.fontUnderline() && !fmt.isAnchor(), "U");
    return open + ComposeRules::htmlText(f.text()) + close;
}

QByteArray blockContent(const QTextBlock& block) {
    QByteArray out;
    for (auto it = block.begin(); !it.atEnd(); ++it)
        if (it.fragment().isValid())
            out += fragmentHtml(it.fragment());
    return out;
}

QByteArray alignAttr(Qt::Alignment a) {
    if (a & Qt::AlignHCenter)
        return "center";
    if (a & Qt::AlignRight)
        return "right";
    return {};
}

} // namespace

qreal frmEmailHtml::pointSize(int htmlSize) {
    return kPoints[size_t(qBound(1, htmlSize, 7) - 1)];
}

int frmEmailHtml::htmlSize(qreal pointSize) {
    int best = 1;
    for (int i = 1; i <= 7; ++i)
        if (qAbs(kPoints[size_t(i - 1)] - pointSize) < qAbs(kPoints[size_t(best - 1)] - pointSize))
            best = i;
    return best;
}

QByteArray frmEmailHtml::serialise(const QTextDocument& doc, bool forText) {
    QByteArray body;
    if (forText) {
        for (QTextBlock block = doc.begin(); block.isValid(); block = block.next()) {
            QByteArray prefix;
            if (const QTextList* list = block.textList())
                prefix = list->format().style() == QTextListFormat::ListDecimal
                             ? QByteArray::number(list->itemNumber(block) + 1) + ". "
                             : "* ";
            if (block.blockFormat().hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth))
                prefix = "----------------------------------------";
            body += "<P>" + prefix + ComposeRules::htmlText(block.text()) + "\r\n";
        }
        return "<BODY>" + body + "</BODY>";
    }
    QTextList* openList = nullptr;
    int openQuotes = 0;
    auto closeList = [&] {
        if (openList)
            body += openList->format().style() == QTextListFormat::ListDecimal ? "</OL>" : "</UL>";
        openList = nullptr;
    };
    for (QTextBlock block = doc.begin(); block.isValid(); block = block.next()) {
        // Lines stay short for the mail; a break after the last block would
        // read back as a trailing space.
        const bool rule =
            block.blockFormat().hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
        if (block != doc.begin() && !rule)
            body += "\r\n";
        const QTextBlockFormat bf = block.blockFormat();
        QTextList* list = block.textList();
        // Indents nest as quotes; a quote read back from HTML is a margin.
        const int quotes = bf.indent() + int(bf.leftMargin() / 40);
        if (list != openList || quotes != openQuotes)
            closeList();
        for (; openQuotes > quotes; --openQuotes)
            body += "</BLOCKQUOTE>";
        for (; openQuotes < quotes; ++openQuotes)
            body += "<BLOCKQUOTE>";
        if (rule) {
            body += "<HR>";
            continue;
        }
        QByteArray content = blockContent(block);
        const QByteArray align = alignAttr(bf.alignment());
        if (list) {
            if (list != openList) {
                body += list->format().style() == QTextListFormat::ListDecimal ? "<OL>" : "<UL>";
                openList = list;
            }
            body += "<LI>" + content + "</LI>";
            continue;
        }
        if (bf.headingLevel() > 0) {
            const QByteArray h = "H" + QByteArray::number(qMin(bf.headingLevel(), 6));
            body += '<' + h + (align.isEmpty() ? "" : " ALIGN=" + align) + '>' + content + "</" +
                    h + '>';
        } else if (bf.nonBreakableLines()) {
            body += "<PRE>" + content.replace("<BR>", "\r\n") + "</PRE>";
        } else if (!align.isEmpty()) {
            body +=
                "<DIV ALIGN=" + align + '>' + (content.isEmpty() ? "&nbsp;" : content) + "</DIV>";
        } else {
            body += "<P>" + (content.isEmpty() ? QByteArray("&nbsp;") : content) + "</P>";
        }
    }
    closeList();
    for (; openQuotes > 0; --openQuotes)
        body += "</BLOCKQUOTE>";
    return "<HTML><HEAD></HEAD><BODY BGCOLOR=#000000 TEXT=#FFFFFF>" + body + "</BODY></HTML>";
}

} // namespace mirel
