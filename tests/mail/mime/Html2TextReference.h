#pragma once
// The reference the HTML-to-text tests and the fuzz target compare with: the
// conversion written down rule by rule as a front-to-back scan that takes one
// character off the remaining input per step and searches the rest afresh.
// It is slow on purpose-built input and meant to be easy to check by eye;
// the production code must give the same bytes for every input.
#include <QByteArray>
#include <QList>
#include <string_view>

namespace mirel::test {

// Every entity name the conversion knows, compared case-sensitively: the
// four of markup, then the Latin-1 names in code point order from 160 on
// ("-" stands for the soft hyphen, which has none).
inline const QList<QByteArray>& referenceEntityNames() {
    static const QList<QByteArray> names =
        QByteArray("amp quot lt gt "
                   "nbsp iexcl cent pound curren yen brvbar sect uml copy ordf laquo not - reg "
                   "macr deg plusmn sup2 sup3 acute micro para middot cedil sup1 ordm raquo frac14 "
                   "frac12 frac34 iquest Agrave Aacute Acirc Atilde Auml Aring AElig Ccedil Egrave "
                   "Eacute Ecirc Euml Igrave Iacute Icirc Iuml ETH Ntilde Ograve Oacute Ocirc "
                   "Otilde Ouml times Oslash Ugrave Uacute Ucirc Uuml Yacute THORN szlig agrave "
                   "aacute acirc atilde auml aring aelig ccedil egrave eacute ecirc euml igrave "
                   "iacute icirc iuml eth ntilde ograve oacute ocirc otilde ouml divide oslash "
                   "ugrave uacute ucirc uuml yacute thorn yuml")
            .split(' ');
    return names;
}

// The byte an entity name stands for, or -1 for a name it does not know.
inline int referenceEntityChar(const QByteArray& name) {
    const qsizetype at = referenceEntityNames().indexOf(name);
    if (at < 0 || name == "-")
        return -1;
    if (at < 4)
        return "&\"<>"[at];
    // Mail text has no non-breaking space; the broken bar is the plain bar.
    if (name == "nbsp")
        return ' ';
    if (name == "brvbar")
        return '|';
    return int(160 + at - 4);
}

inline QByteArray referenceHtml2Text(QByteArray input) {
    constexpr auto npos = std::string_view::npos;
    if (const qsizetype body = input.toLower().indexOf("<body"); body >= 0) {
        input = input.mid(body);
        input = input.mid(input.indexOf('>') + 1); // no '>': from "<body" on
    }
    if (const qsizetype end = input.toLower().indexOf("</body>"); end >= 0)
        input = input.left(end);

    std::string_view rest(input.constData(), size_t(input.size()));
    QByteArray result;
    auto dropSpaces = [&] {
        while (!rest.empty() && rest.front() == ' ')
            rest.remove_prefix(1);
    };
    while (!rest.empty()) {
        const char c = rest.front();
        rest.remove_prefix(1);
        QByteArray piece(1, c);
        if (c == ' ') {
            dropSpaces();
        } else if (c == '\r' || c == '\n') {
            piece.clear();
            if (!rest.empty() && rest.front() == '\n')
                rest.remove_prefix(1);
            dropSpaces();
        } else if (c == '<') {
            piece.clear();
            if (const size_t gt = rest.find('>'); gt != npos) {
                const QByteArray tag = QByteArray(rest.data(), qsizetype(gt)).toLower();
                rest.remove_prefix(gt + 1);
                if (tag == "p" || tag == "/div")
                    piece = "\r\n\r\n";
                else if (tag == "br")
                    piece = "\r\n";
            }
        } else if (c == '&') {
            const size_t semi = rest.find(';');
            const size_t space = rest.find(' ');
            if (semi != npos && (space == npos || space > semi)) {
                const QByteArray name(rest.data(), qsizetype(semi));
                rest.remove_prefix(semi + 1);
                const int ch = referenceEntityChar(name);
                piece = ch < 0 ? "&" + name + ";" : QByteArray(1, char(ch));
            }
        }
        result += piece;
    }
    return result;
}

} // namespace mirel::test
