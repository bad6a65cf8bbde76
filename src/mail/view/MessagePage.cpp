#include "mail/view/MessagePage.h"

#include "mail/mime/MailDisplayText.h"

namespace mirel {

namespace {

const QByteArray kTextHead =
    QByteArrayLiteral("<HTML><HEAD><TITLE></TITLE></HEAD><BODY BGCOLOR=#000000 TEXT=#FFFFFF>");
const QByteArray kTextTail = QByteArrayLiteral("</BODY></HTML>");
const QByteArray kLinkHead = QByteArrayLiteral("<HTML><HEAD><base target=_blank></HEAD>");
const QByteArray kDarkBody = QByteArrayLiteral("BODY BGCOLOR=#000000 TEXT=#FFFFFF");

// The rest of a tag from its "<": up to its ">", or to the end of the page.
qsizetype tagEnd(const QByteArray& page, qsizetype from) {
    const qsizetype close = page.indexOf('>', from);
    return close < 0 ? page.size() : close;
}

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
    const QByteArray upper = page.toUpper(); // colours are replaced in place, length kept
    for (;;) {
        const qsizetype open = upper.indexOf("<FONT", from);
        if (open < 0)
            return;
        const qsizetype end = tagEnd(page, open);
        const qsizetype hash = page.indexOf('#', open);
        // A colour written shorter than six digits is left alone: its six
        // characters would run over the end of the tag.
        if (hash > open && hash + 6 < end) {
            int value = 0;
            for (int i = 1; i <= 6; ++i)
                value = value * 16 + hexDigit(page[hash + i]);
            if (value == 0)
                page.replace(hash + 1, 6, "FFFFFF");
        }
        from = open + 5;
    }
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

QByteArray MessagePage::linkAddresses(QByteArray page) {
    QByteArray upper = page.toUpper();
    qsizetype from = 0;
    for (;;) {
        const qsizetype p = upper.indexOf("HTTP://", from);
        if (p < 0)
            return page;
        qsizetype end = p;
        while (end < page.size() && page[end] != '\n' && page[end] != '\r' && page[end] != '<' &&
               page[end] != ' ')
            ++end;
        const QByteArray address = page.mid(p, end - p);
        const QByteArray link = "<A TARGET=\"_blank\" HREF=\"" + address + "\">" + address + "</a>";
        page.replace(p, address.size(), link);
        upper.replace(p, address.size(), link.toUpper());
        // Past the link's own href and four characters into its caption, so
        // the caption's address is not linked again.
        from = p + address.size() + 31;
    }
}

QByteArray MessagePage::fromHtml(QByteArrayView html) {
    QByteArray page = html.toByteArray();
    const qsizetype body = page.toUpper().indexOf("<BODY");
    // A page that begins with its body tag, or has none, keeps its own head
    // and colours.
    if (body > 0) {
        page = kLinkHead + page.mid(body);
        const qsizetype open = kLinkHead.size();
        const qsizetype end = tagEnd(page, open);
        if (!isDark(page.mid(open, end - open).toUpper())) {
            page.replace(open + 1, end - open - 1, kDarkBody);
            whitenBlackFonts(page, open + 1 + kDarkBody.size());
        }
    }
    return repairEndTag(std::move(page));
}

QByteArray MessagePage::repairEndTag(QByteArray page) {
    const QByteArray upper = page.toUpper();
    if (upper.contains("</HTML>"))
        return page;
    static const struct {
        const char* cut;
        const char* rest;
    } kCuts[] = {{"</HTML", ">"}, {"</HTM", "L>"}, {"</HT", "ML>"}};
    for (const auto& c : kCuts) {
        const qsizetype at = upper.indexOf(c.cut);
        if (at >= 0)
            return page.insert(at + qsizetype(qstrlen(c.cut)), c.rest);
    }
    return page;
}

QByteArray MessagePage::displayCharset(QByteArrayView pageView, QByteArrayView headers) {
    const QByteArray page = pageView.toByteArray();
    const QByteArray upper = page.toUpper();
    for (qsizetype meta = upper.indexOf("<META"); meta >= 0;
         meta = upper.indexOf("<META", meta + 5)) {
        const qsizetype end = tagEnd(upper, meta);
        const qsizetype at = upper.indexOf("CHARSET=", meta);
        if (at < 0 || at > end)
            continue;
        QByteArray value = page.mid(at + 8, end - at - 8).trimmed();
        if (value.startsWith('"') || value.startsWith('\''))
            value.remove(0, 1);
        qsizetype stop = 0;
        while (stop < value.size() &&
               (QChar::isLetterOrNumber(uchar(value[stop])) || value[stop] == '-' ||
                value[stop] == '_' || value[stop] == ':' || value[stop] == '.'))
            ++stop;
        if (stop > 0)
            return value.left(stop).toLower();
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
