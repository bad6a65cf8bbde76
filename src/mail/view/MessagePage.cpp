#include "mail/view/MessagePage.h"

#include "mail/mime/MailDisplayText.h"

#include <QtAlgorithms>
#include <cctype>
#ifdef __SSE2__
#include <emmintrin.h>
#endif
#include <cstring>
#include <vector>

namespace mirel {

namespace {

const QByteArray kTextHead =
    QByteArrayLiteral("<HTML><HEAD><TITLE></TITLE></HEAD><BODY BGCOLOR=#000000 TEXT=#FFFFFF>");
const QByteArray kTextTail = QByteArrayLiteral("</BODY></HTML>");
const QByteArray kLinkHead = QByteArrayLiteral("<HTML><HEAD><base target=_blank></HEAD>");
const QByteArray kDarkBody = QByteArrayLiteral("BODY BGCOLOR=#000000 TEXT=#FFFFFF");

char asciiUpper(char c) {
    return c >= 'a' && c <= 'z' ? char(c - 32) : c;
}

bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool matchesNoCase(const char* at, QByteArrayView upper) {
    for (qsizetype k = 0; k < upper.size(); ++k)
        if (asciiUpper(at[k]) != upper[k])
            return false;
    return true;
}

// Where `upper` (upper-case ASCII) first stands at or after `from` in any
// letter case, as in an upper-cased copy of the page. A mark of the needle
// that has no case ("<", ":", "=") is looked for where the page is, neither
// copied nor walked byte by byte: sixteen bytes at a time together with the
// byte beside it (a page holds a "<" every few dozen bytes, but few "<F"),
// then by the C library for what is left.
qsizetype indexOfNoCase(QByteArrayView page, QByteArrayView upper, qsizetype from = 0) {
    const qsizetype n = upper.size();
    qsizetype mark = 0;
    while (mark < n && isAsciiLetter(upper[mark]))
        ++mark;
    const qsizetype last = page.size() - n;
    qsizetype i = qMax<qsizetype>(from, 0);
#ifdef __SSE2__
    if (const qsizetype beside = mark + 1 < n ? mark + 1 : mark - 1; mark < n && beside >= 0) {
        // Or-ing 0x20 folds a letter to lower case; other bytes it may turn
        // into a letter, so a hit is a candidate that a full match confirms.
        const bool letter = isAsciiLetter(upper[beside]);
        const __m128i fold = _mm_set1_epi8(letter ? 0x20 : 0);
        const __m128i wantMark = _mm_set1_epi8(upper[mark]);
        const __m128i wantBeside = _mm_set1_epi8(char(upper[beside] | (letter ? 0x20 : 0)));
        const auto load = [&](qsizetype at) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(page.data() + at));
        };
        for (; i + 15 <= last; i += 16) {
            const __m128i marks = _mm_cmpeq_epi8(load(i + mark), wantMark);
            const __m128i besides =
                _mm_cmpeq_epi8(_mm_or_si128(load(i + beside), fold), wantBeside);
            unsigned hits = unsigned(_mm_movemask_epi8(_mm_and_si128(marks, besides)));
            for (; hits; hits &= hits - 1) {
                const qsizetype at = i + qCountTrailingZeroBits(hits);
                if (matchesNoCase(page.data() + at, upper))
                    return at;
            }
        }
    }
#endif
    for (; i <= last; ++i) {
        if (mark < n) {
            const void* hit = memchr(page.data() + i + mark, upper[mark], size_t(last - i + 1));
            if (!hit)
                return -1;
            i = static_cast<const char*>(hit) - page.data() - mark;
        }
        if (matchesNoCase(page.data() + i, upper))
            return i;
    }
    return -1;
}

// Whether the page holds `upper` anywhere: from the back, where an end tag
// normally stands.
bool containsNoCase(QByteArrayView page, QByteArrayView upper) {
    const char mark = upper.front(); // the needles asked about start with "<"
    for (qsizetype end = page.size() - upper.size() + 1; end > 0;) {
        const void* hit = memrchr(page.data(), mark, size_t(end));
        if (!hit)
            return false;
        const qsizetype i = static_cast<const char*>(hit) - page.data();
        if (matchesNoCase(page.data() + i, upper))
            return true;
        end = i;
    }
    return false;
}

// The first match at or after a position that only moves forward. A page of
// a million tags would otherwise be searched to its end once per tag.
class ForwardSearch {
public:
    ForwardSearch(QByteArrayView page, QByteArrayView upper) : m_page(page), m_what(upper) {}
    qsizetype from(qsizetype at) {
        if (m_found == -2 || (m_found != -1 && m_found < at))
            m_found = indexOfNoCase(m_page, m_what, at);
        return m_found;
    }
    // Where the tag opened at `at` ends: its ">" or the end of the page.
    qsizetype tagEnd(qsizetype at) {
        const qsizetype close = from(at);
        return close < 0 ? m_page.size() : close;
    }

private:
    QByteArrayView m_page;
    QByteArrayView m_what;
    qsizetype m_found = -2; // not searched yet
};

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return 0; // anything else reads as 0
}

bool isDark(const QByteArray& upperTag) {
    const qsizetype at = upperTag.indexOf("BGCOLOR=");
    if (at < 0)
        return false;
    QByteArray value = upperTag.mid(at + 8);
    if (value.startsWith('"'))
        value.remove(0, 1);
    return value.startsWith("#000000");
}

// Black FONT colours after the body tag would vanish on the black page.
void whitenBlackFonts(QByteArray& page, qsizetype from) {
    std::vector<qsizetype> black; // replaced afterwards: the searches read the page as it was
    ForwardSearch closes(page, ">"), hashes(page, "#");
    for (;;) {
        const qsizetype open = indexOfNoCase(page, "<FONT", from);
        if (open < 0)
            break;
        const qsizetype end = closes.tagEnd(open);
        const qsizetype hash = hashes.from(open);
        // A colour written shorter than six digits is left alone: its six
        // characters would run over the end of the tag.
        if (hash > open && hash + 6 < end) {
            int value = 0;
            for (int i = 1; i <= 6; ++i)
                value = value * 16 + hexDigit(page.at(hash + i));
            if (value == 0)
                black.push_back(hash);
        }
        from = open + 5;
    }
    if (black.empty())
        return;
    char* bytes = page.data(); // one detach for all of them
    for (qsizetype hash : black)
        memcpy(bytes + hash + 1, "FFFFFF", 6);
}

} // namespace

QByteArray MessagePage::build(QByteArrayView text, QByteArrayView html) {
    return html.isEmpty() ? fromText(text) : fromHtml(html);
}

QByteArray MessagePage::fromText(QByteArrayView text) {
    const QByteArray raw = kTextHead + text.toByteArray() + kTextTail;
    QByteArray page;
    page.reserve(raw.size() + raw.count('\n') * 4);
    for (char c : raw) {
        if (c == '\n')
            page += "<BR>";
        page += c;
    }
    return linkAddresses(std::move(page));
}

namespace {

bool endsAddress(char c) {
    return c == '\n' || c == '\r' || c == '<' || c == ' ';
}

// An address that holds another "http://" past its first four characters
// gets that one linked again inside its caption, and so on. Only so many
// levels, and only in addresses of a sensible length, so that a message of
// one endless address cannot make a page many times its size.
constexpr int kMaxNestedLinks = 8;
constexpr qsizetype kMaxNestedAddress = 64 * 1024;

void appendLink(QByteArray& out, QByteArrayView address, QByteArrayView upper) {
    int levels = 0;
    for (;;) {
        out += "<A TARGET=\"_blank\" HREF=\"";
        out += address;
        out += "\">";
        ++levels;
        const qsizetype inner = levels <= kMaxNestedLinks && address.size() <= kMaxNestedAddress
                                    ? upper.indexOf("HTTP://", 4)
                                    : -1;
        if (inner < 0)
            break;
        out += address.first(inner);
        address = address.sliced(inner);
        upper = upper.sliced(inner);
    }
    out += address;
    for (int i = 0; i < levels; ++i)
        out += "</a>";
}

} // namespace

// The page is copied once, link by link, rather than edited in place: each
// in-place edit would move the whole rest of the page.
QByteArray MessagePage::linkAddresses(QByteArray page) {
    const QByteArray upper = page.toUpper();
    qsizetype p = upper.indexOf("HTTP://");
    if (p < 0)
        return page;
    QByteArray out;
    out.reserve(page.size() + page.size() / 2);
    qsizetype done = 0;
    while (p >= 0) {
        qsizetype end = p;
        while (end < page.size() && !endsAddress(page[end]))
            ++end;
        out.append(page.constData() + done, p - done);
        appendLink(out, QByteArrayView(page).sliced(p, end - p),
                   QByteArrayView(upper).sliced(p, end - p));
        done = end;
        p = upper.indexOf("HTTP://", end);
    }
    out.append(page.constData() + done, page.size() - done);
    return out;
}

QByteArray MessagePage::fromHtml(QByteArrayView html) {
    const qsizetype body = indexOfNoCase(html, "<BODY");
    // A page that begins with its body tag, or has none, keeps its own head
    // and colours.
    if (body <= 0)
        return repairEndTag(html.toByteArray());
    // Made in one piece: the head, the body tag (darkened unless it is dark
    // already) and the rest, with room for the end tag's repair.
    const qsizetype close = html.indexOf('>', body);
    const qsizetype end = close < 0 ? html.size() : close;
    const bool dark = isDark(html.sliced(body, end - body).toByteArray().toUpper());
    QByteArray page;
    page.reserve(kLinkHead.size() + kDarkBody.size() + html.size() - body + 8);
    page += kLinkHead;
    if (dark) {
        page += html.sliced(body);
    } else {
        page += '<';
        page += kDarkBody;
        const qsizetype fonts = page.size();
        page += html.sliced(end);
        whitenBlackFonts(page, fonts);
    }
    return repairEndTag(std::move(page));
}

QByteArray MessagePage::repairEndTag(QByteArray page) {
    if (containsNoCase(page, "</HTML>"))
        return page;
    static const struct {
        const char* cut;
        const char* rest;
    } kCuts[] = {{"</HTML", ">"}, {"</HTM", "L>"}, {"</HT", "ML>"}};
    for (const auto& c : kCuts) {
        const qsizetype at = indexOfNoCase(page, c.cut);
        if (at >= 0)
            return page.insert(at + qsizetype(qstrlen(c.cut)), c.rest);
    }
    return page;
}

QByteArray MessagePage::displayCharset(QByteArrayView pageView, QByteArrayView headers) {
    const QByteArrayView page = pageView;
    ForwardSearch closes(page, ">"), charsets(page, "CHARSET=");
    for (qsizetype meta = indexOfNoCase(page, "<META"); meta >= 0;
         meta = indexOfNoCase(page, "<META", meta + 5)) {
        const qsizetype end = closes.tagEnd(meta);
        const qsizetype at = charsets.from(meta);
        if (at < 0 || at > end)
            continue;
        // The value is read where it stands: copying the rest of a tag that
        // never closes, once per meta tag in it, would take the square of
        // its length.
        qsizetype start = at + 8;
        while (start < end && isspace(uchar(page[start])))
            ++start;
        if (start < end && (page[start] == '"' || page[start] == '\''))
            ++start;
        qsizetype stop = start;
        while (stop < end && (QChar::isLetterOrNumber(uchar(page[stop])) || page[stop] == '-' ||
                              page[stop] == '_' || page[stop] == ':' || page[stop] == '.'))
            ++stop;
        if (stop > start)
            return page.sliced(start, stop - start).toByteArray().toLower();
    }
    // The message's own Content-Type, with its folded continuation lines.
    const QByteArray h = headers.toByteArray();
    qsizetype line = 0;
    while (line < h.size()) {
        qsizetype next = h.indexOf('\n', line);
        next = next < 0 ? h.size() : next + 1;
        if (h.mid(line, 13).compare("Content-Type:", Qt::CaseInsensitive) == 0) {
            QByteArray value = h.mid(line + 13, next - line - 13);
            while (next < h.size() && (h[next] == ' ' || h[next] == '\t')) {
                qsizetype more = h.indexOf('\n', next);
                more = more < 0 ? h.size() : more + 1;
                value += h.mid(next, more - next);
                next = more;
            }
            const qsizetype semi = value.indexOf(';');
            return MailDisplayText::charsetOf(semi < 0 ? QByteArray() : value.mid(semi + 1));
        }
        line = next;
    }
    return MailDisplayText::charsetOf({});
}

} // namespace mirel
