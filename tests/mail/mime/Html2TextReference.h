#pragma once
// The reference the HTML-to-text tests and the fuzz target compare with: the
// conversion written down rule by rule as a front-to-back scan that takes one
// character off the remaining input per step and searches the rest afresh.
// It is slow on purpose-built input and meant to be easy to check by eye;
// the production code must give the same bytes for every input.
#include <QByteArray>
#include <string_view>

namespace mirel::test {

struct ReferenceEntity {
    const char* name;
    unsigned char code;
};

// In the order they are tried; names compare case-sensitively.
inline constexpr ReferenceEntity kReferenceEntities[] = {
    {"amp", '&'},    {"quot", '"'},   {"lt", '<'},     {"gt", '>'},     {"nbsp", 32},
    {"Auml", 196},   {"auml", 228},   {"iexcl", 161},  {"cent", 162},   {"pound", 163},
    {"curren", 164}, {"yen", 165},    {"brvbar", 124}, {"sect", 167},   {"uml", 168},
    {"copy", 169},   {"ordf", 170},   {"laquo", 171},  {"not", 172},    {"reg", 174},
    {"macr", 175},   {"deg", 176},    {"plusmn", 177}, {"sup2", 178},   {"sup3", 179},
    {"acute", 180},  {"micro", 181},  {"para", 182},   {"middot", 183}, {"cedil", 184},
    {"sup1", 185},   {"ordm", 186},   {"raquo", 187},  {"frac14", 188}, {"frac12", 189},
    {"frac34", 190}, {"iquest", 191}, {"Agrave", 192}, {"Aacute", 193}, {"Acirc", 194},
    {"Atilde", 195}, {"Aring", 197},  {"AElig", 198},  {"Ccedil", 199}, {"Egrave", 200},
    {"Eacute", 201}, {"Ecirc", 202},  {"Euml", 203},   {"Igrave", 204}, {"Iacute", 205},
    {"Icirc", 206},  {"Iuml", 207},   {"ETH", 208},    {"Ntilde", 209}, {"Ograve", 210},
    {"Oacute", 211}, {"Ocirc", 212},  {"Otilde", 213}, {"Ouml", 214},   {"times", 215},
    {"Oslash", 216}, {"Ugrave", 217}, {"Uacute", 218}, {"Ucirc", 219},  {"Uuml", 220},
    {"Yacute", 221}, {"THORN", 222},  {"szlig", 223},  {"agrave", 224}, {"aacute", 225},
    {"acirc", 226},  {"atilde", 227}, {"aring", 229},  {"aelig", 230},  {"ccedil", 231},
    {"egrave", 232}, {"eacute", 233}, {"ecirc", 234},  {"euml", 235},   {"igrave", 236},
    {"iacute", 237}, {"icirc", 238},  {"iuml", 239},   {"eth", 240},    {"ntilde", 241},
    {"ograve", 242}, {"oacute", 243}, {"ocirc", 244},  {"otilde", 245}, {"ouml", 246},
    {"divide", 247}, {"oslash", 248}, {"ugrave", 249}, {"uacute", 250}, {"ucirc", 251},
    {"uuml", 252},   {"yacute", 253}, {"thorn", 254},  {"yuml", 255},
};

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
                piece = "&" + name + ";";
                for (const ReferenceEntity& e : kReferenceEntities) {
                    if (name == e.name) {
                        piece = QByteArray(1, char(e.code));
                        break;
                    }
                }
            }
        }
        result += piece;
    }
    return result;
}

} // namespace mirel::test
