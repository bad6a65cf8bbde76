#pragma once
// The compose editor's document as mail HTML. Qt writes its documents as
// style attributes that most mail readers ignore; what goes out instead is
// the small tag vocabulary every mail program reads: P, BR, B, I, U, FONT,
// UL/OL/LI, BLOCKQUOTE for indents, HR, A, IMG, H1-H6, PRE and DIV ALIGN,
// inside the black page the compose window writes on. Text is escaped, and
// characters outside Windows-1252 go out as numeric references, so the
// bytes are always Windows-1252.
#include <QByteArray>

class QTextDocument;

namespace mirel {

/// Serialises a compose document; maps the classic font sizes 1-7.
class frmEmailHtml {
public:
    static inline const QByteArray kDefaultFont = QByteArrayLiteral("Arial");
    static constexpr int kDefaultSize = 3;

    /// forText: every block as a paragraph (list items with "* " or "1. ",
    /// a rule as a dashed line), so the plain-text rendering keeps the lines
    /// that lists, headings and rules have on screen.
    static QByteArray serialise(const QTextDocument& doc, bool forText = false);
    /// Point size of HTML font size 1-7 (out of range reads as the nearest).
    static qreal pointSize(int htmlSize);
    /// The HTML font size 1-7 nearest to a point size.
    static int htmlSize(qreal pointSize);
};

} // namespace mirel
