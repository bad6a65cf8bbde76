#include "mail/mime/HTML2Text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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

// Whether "<bo" or "</b" (any case for a letter) stands at p: the start of
// "<body" or "</body>", which alone decide where the text is.
bool bodyTagStart(const char* p) {
    return p[0] == '<' && ((lowerAscii(p[1]) == 'b' && lowerAscii(p[2]) == 'o') ||
                           (p[1] == '/' && lowerAscii(p[2]) == 'b'));
}

#if defined(__SSE2__)
// Bit k set where bodyTagStart(p + k) may hold; reads p[0..17].
unsigned bodyTagStarts16(const char* p) {
    auto load = [p](int k) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + k)); };
    auto is = [](__m128i v, char c) { return _mm_cmpeq_epi8(v, _mm_set1_epi8(c)); };
    const __m128i fold = _mm_set1_epi8(0x20);
    const __m128i second = _mm_or_si128(load(1), fold), third = _mm_or_si128(load(2), fold);
    const __m128i b = _mm_or_si128(_mm_and_si128(is(second, 'b'), is(third, 'o')),
                                   _mm_and_si128(is(load(1), '/'), is(third, 'b')));
    return unsigned(_mm_movemask_epi8(_mm_and_si128(is(load(0), '<'), b)));
}
#endif

// The text between "<body ...>" and "</body>", found in one pass over the
// page: without a body tag, everything before the first "</body>" (or the
// whole page); a body tag without its '>' keeps the tag's own text.
std::string_view bodyText(std::string_view s) {
    const size_t n = s.size();
    size_t start = 0, firstEnd = n;
    bool inBody = false;
    // Answers whether the scan is over.
    auto candidate = [&](size_t at) {
        const std::string_view rest = s.substr(at);
        if (!inBody && equalsLower(rest.substr(0, 5), "<body")) {
            inBody = true;
            const size_t gt = s.find('>', at);
            start = gt == std::string_view::npos ? at : gt + 1;
            return false;
        }
        if (at < start || !equalsLower(rest.substr(0, 7), "</body>"))
            return false;
        firstEnd = std::min(firstEnd, at);
        return inBody;
    };
    size_t at = 0;
#if defined(__SSE2__)
    for (; at + 18 <= n; at += 16)
        for (unsigned bits = bodyTagStarts16(s.data() + at); bits; bits &= bits - 1)
            if (const size_t k = at + size_t(__builtin_ctz(bits)); candidate(k))
                return s.substr(start, k - start);
#endif
    for (; at + 3 <= n; ++at)
        if (bodyTagStart(s.data() + at) && candidate(at))
            return s.substr(start, at - start);
    return inBody ? s.substr(start) : s.substr(0, firstEnd);
}

// The first position of ch at or after from; end when there is none. Inline
// rather than memchr: the '>' of a tag is mostly a few bytes away.
size_t findByte(std::string_view text, size_t from, char ch) {
    const size_t n = text.size();
#if defined(__SSE2__)
    const __m128i c = _mm_set1_epi8(ch);
    for (; from + 16 <= n; from += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + from));
        if (const unsigned bits = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(v, c))))
            return from + size_t(__builtin_ctz(bits));
    }
#endif
    while (from < n && text[from] != ch)
        ++from;
    return from;
}

// Where the plain text that starts at i ends: at '<', '&', a line break or a
// second blank in a row (a single blank is text like any letter). The run is
// copied to o on the way; o has room for sixteen bytes more than it gets.
size_t copyText(std::string_view s, size_t i, char*& o) {
    const size_t n = s.size();
#if defined(__SSE2__)
    const __m128i lt = _mm_set1_epi8('<'), amp = _mm_set1_epi8('&'), cr = _mm_set1_epi8('\r'),
                  lf = _mm_set1_epi8('\n'), sp = _mm_set1_epi8(' ');
    for (; i + 17 <= n; i += 16, o += 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s.data() + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s.data() + i + 1));
        const __m128i stop =
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(a, lt), _mm_cmpeq_epi8(a, amp)),
                         _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(a, cr), _mm_cmpeq_epi8(a, lf)),
                                      _mm_and_si128(_mm_cmpeq_epi8(a, sp), _mm_cmpeq_epi8(b, sp))));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(o), a);
        if (const unsigned bits = unsigned(_mm_movemask_epi8(stop))) {
            const unsigned k = unsigned(__builtin_ctz(bits));
            o += k;
            return i + k;
        }
    }
#endif
    for (; i < n; ++i) {
        const char c = s[i];
        if (c == '<' || c == '&' || c == '\r' || c == '\n' ||
            (c == ' ' && i + 1 < n && s[i + 1] == ' '))
            break;
        *o++ = c;
    }
    return i;
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
            m_found = findByte(m_text, i, m_ch);
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

    s = bodyText(s);

    // The longest piece per input byte is the blank line of "<p>": four
    // bytes for three, so this size (and sixteen for copyText) is never
    // outgrown.
    const size_t n = s.size();
    QByteArray out(qsizetype(n + n / 3 + 8 + 16), Qt::Uninitialized);
    char* const first = out.data();
    char* o = first;
    auto put = [&o](std::string_view piece) {
        std::memcpy(o, piece.data(), piece.size());
        o += piece.size();
    };

    NextOf nextGt(s, '>'), nextSemi(s, ';'), nextSpace(s, ' ');
    size_t i = 0;
    while (i < n) {
        i = copyText(s, i, o);
        if (i == n)
            break;
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
        default: // copyText stops at nothing else
            break;
        }
    }
    out.truncate(o - first);
    return out;
}

} // namespace mirel
