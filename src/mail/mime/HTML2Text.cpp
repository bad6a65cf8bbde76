#include "mail/mime/HTML2Text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

namespace mirel {
namespace {

// The HTML 4 Latin-1 names by code point (160 + index). The soft hyphen has
// no entry: "&shy;" stays in the text as written.
constexpr std::array<std::string_view, 96> kLatin1Names = {
    "nbsp",   "iexcl",  "cent",   "pound",  "curren", "yen",    "brvbar", "sect",   "uml",
    "copy",   "ordf",   "laquo",  "not",    "",       "reg",    "macr",   "deg",    "plusmn",
    "sup2",   "sup3",   "acute",  "micro",  "para",   "middot", "cedil",  "sup1",   "ordm",
    "raquo",  "frac14", "frac12", "frac34", "iquest", "Agrave", "Aacute", "Acirc",  "Atilde",
    "Auml",   "Aring",  "AElig",  "Ccedil", "Egrave", "Eacute", "Ecirc",  "Euml",   "Igrave",
    "Iacute", "Icirc",  "Iuml",   "ETH",    "Ntilde", "Ograve", "Oacute", "Ocirc",  "Otilde",
    "Ouml",   "times",  "Oslash", "Ugrave", "Uacute", "Ucirc",  "Uuml",   "Yacute", "THORN",
    "szlig",  "agrave", "aacute", "acirc",  "atilde", "auml",   "aring",  "aelig",  "ccedil",
    "egrave", "eacute", "ecirc",  "euml",   "igrave", "iacute", "icirc",  "iuml",   "eth",
    "ntilde", "ograve", "oacute", "ocirc",  "otilde", "ouml",   "divide", "oslash", "ugrave",
    "uacute", "ucirc",  "uuml",   "yacute", "thorn",  "yuml",
};

struct Entity {
    std::string_view name;
    char ch;
};

// Sorted once, searched by halving: an entity costs a few short compares
// however many there are in a document.
const std::vector<Entity>& entityTable() {
    static const std::vector<Entity> table = [] {
        std::vector<Entity> t = {{"amp", '&'}, {"quot", '"'}, {"lt", '<'}, {"gt", '>'}};
        for (size_t i = 0; i < kLatin1Names.size(); ++i)
            if (!kLatin1Names[i].empty())
                t.push_back({kLatin1Names[i], char(160 + i)});
        // Mail text has no non-breaking space and the broken bar is shown as
        // the plain bar everywhere else in the program.
        for (Entity& e : t) {
            if (e.name == "nbsp")
                e.ch = ' ';
            else if (e.name == "brvbar")
                e.ch = '|';
        }
        std::sort(t.begin(), t.end(),
                  [](const Entity& a, const Entity& b) { return a.name < b.name; });
        return t;
    }();
    return table;
}

constexpr size_t kLongestEntityName = 6;

// The entity's character, or -1 for a name the table does not hold.
int entityChar(std::string_view name) {
    if (name.size() < 2 || name.size() > kLongestEntityName)
        return -1;
    const auto& t = entityTable();
    const auto it = std::lower_bound(
        t.begin(), t.end(), name, [](const Entity& e, std::string_view n) { return e.name < n; });
    if (it == t.end() || it->name != name)
        return -1;
    return static_cast<unsigned char>(it->ch);
}

bool isSpecial(char c) {
    return c == ' ' || c == '\r' || c == '\n' || c == '<' || c == '&';
}

char lowerAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c;
}

bool equalsLower(std::string_view text, std::string_view lower) {
    if (text.size() != lower.size())
        return false;
    for (size_t i = 0; i < text.size(); ++i)
        if (lowerAscii(text[i]) != lower[i])
            return false;
    return true;
}

// First position at or after from where lower (lower-case ASCII, beginning
// with '<') stands in text regardless of case; npos when nowhere.
size_t findLower(std::string_view text, size_t from, std::string_view lower) {
    while (from < text.size()) {
        const void* hit = std::memchr(text.data() + from, lower[0], text.size() - from);
        if (!hit)
            break;
        const size_t at = size_t(static_cast<const char*>(hit) - text.data());
        if (equalsLower(text.substr(at, lower.size()), lower))
            return at;
        from = at + 1;
    }
    return std::string_view::npos;
}

/// The next position of one character at or after a cursor that only moves
/// forward. Each byte is searched at most once, which is what keeps a
/// document full of '<' without any '>' (or '&' without ';') linear.
class NextOf {
  public:
    NextOf(std::string_view text, char ch) : m_text(text), m_ch(ch) {}

    size_t from(size_t i) {
        if (!m_searched || m_found < i) {
            m_searched = true;
            const void* hit = i < m_text.size()
                                  ? std::memchr(m_text.data() + i, m_ch, m_text.size() - i)
                                  : nullptr;
            m_found = hit ? size_t(static_cast<const char*>(hit) - m_text.data()) : m_text.size();
        }
        return m_found; // m_text.size() when there is none
    }

  private:
    std::string_view m_text;
    char m_ch;
    size_t m_found = 0;
    bool m_searched = false;
};

} // namespace

QByteArray HTML2Text(QByteArrayView html) {
    std::string_view s(html.data(), size_t(html.size()));

    if (const size_t body = findLower(s, 0, "<body"); body != std::string_view::npos) {
        s.remove_prefix(body);
        // A body tag that never closes keeps its text: the '<' is dropped by
        // the scan below and the rest reads as words.
        if (const size_t gt = s.find('>'); gt != std::string_view::npos)
            s.remove_prefix(gt + 1);
    }
    if (const size_t end = findLower(s, 0, "</body>"); end != std::string_view::npos)
        s = s.substr(0, end);

    // The longest piece per input byte is the blank line of "<p>": four
    // bytes for three, so this size is never outgrown.
    const size_t n = s.size();
    QByteArray out(qsizetype(n + n / 3 + 8), Qt::Uninitialized);
    char* const first = out.data();
    char* o = first;
    auto put = [&o](std::string_view piece) {
        std::memcpy(o, piece.data(), piece.size());
        o += piece.size();
    };

    NextOf nextGt(s, '>'), nextSemi(s, ';'), nextSpace(s, ' ');
    size_t i = 0;
    while (i < n) {
        const char c = s[i++];
        switch (c) {
        case ' ':
            *o++ = ' ';
            while (i < n && s[i] == ' ')
                ++i;
            break;
        case '\r':
        case '\n':
            // The source's line breaks are layout of the HTML, not of the text.
            if (i < n && s[i] == '\n')
                ++i;
            while (i < n && s[i] == ' ')
                ++i;
            break;
        case '<': {
            const size_t gt = nextGt.from(i);
            if (gt == n)
                break;
            const std::string_view tag = s.substr(i, gt - i);
            i = gt + 1;
            if (equalsLower(tag, "p") || equalsLower(tag, "/div"))
                put("\r\n\r\n");
            else if (equalsLower(tag, "br"))
                put("\r\n");
            break;
        }
        case '&': {
            const size_t semi = nextSemi.from(i);
            if (semi == n || nextSpace.from(i) < semi) {
                *o++ = '&';
                break;
            }
            const std::string_view name = s.substr(i, semi - i);
            i = semi + 1;
            if (const int ch = entityChar(name); ch >= 0) {
                *o++ = char(ch);
            } else {
                *o++ = '&';
                put(name);
                *o++ = ';';
            }
            break;
        }
        default: {
            // Plain text comes in runs; copy a run at once.
            size_t j = i;
            while (j < n && !isSpecial(s[j]))
                ++j;
            *o++ = c;
            put(s.substr(i, j - i));
            i = j;
        }
        }
    }
    out.truncate(o - first);
    return out;
}

} // namespace mirel
