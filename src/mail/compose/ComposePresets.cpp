#include "mail/compose/ComposePresets.h"

#include "mail/transport/AccountRecord.h"
#include "platform/Cp1252.h"
#include "platform/MailHeaders.h"

namespace mirel {
namespace {

QByteArray escaped(const QString& text) {
    QByteArray out;
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case 0x2028: // a line break typed with Shift+Enter
        case '\n':
            out += "<BR>";
            break;
        case 0xA0:
            out += "&nbsp;";
            break;
        case QChar::ObjectReplacementCharacter:
            break; // an image's place holder

        default: {
            const QByteArray b = Cp1252::fromUnicode(QString(c));
            if (b.size() == 1 && (b != "?" || c == QLatin1Char('?')))
                out += b;
            else if (!c.isSurrogate())
                out += "&#" + QByteArray::number(c.unicode()) + ';';
        }
        }
    }
    return out;
}

} // namespace

QByteArray ComposeRules::htmlText(const QString& text) {
    QByteArray out;
    qsizetype start = 0;
    for (qsizetype i = 0; i + 1 < text.size(); ++i)
        if (text[i].isHighSurrogate() && text[i + 1].isLowSurrogate()) {
            out += escaped(text.mid(start, i - start));
            out += "&#" + QByteArray::number(QChar::surrogateToUcs4(text[i], text[i + 1])) + ';';
            start = ++i + 1;
        }
    return out + escaped(text.mid(start));
}

QByteArray ComposeRules::replySubject(QByteArrayView subject) {
    if (subject.first(qMin<qsizetype>(4, subject.size())).toByteArray().toUpper() == "RE: ")
        return subject.toByteArray();
    return "Re: " + subject.toByteArray();
}

QByteArray ComposeRules::quoteHeader(const QuoteTexts& t, const AnsweredMessage& m) {
    auto line = [](const QByteArray& label, const QByteArray& value) {
        return "<B>" + label + ":</B> " + value;
    };
    return "<BR><BR><TABLE BORDER=0 WIDTH=95%><TR><TD BGCOLOR=#AAAAAA><FONT "
           "COLOR=#FFFFFF><B>---- " +
           t.reply + " ----</B></FONT></TD></TR></TABLE>" + line(t.from, m.from) + "<BR>" +
           line(t.to, m.to) + "<BR>" + line(t.date, m.date) + "<BR>" + line(t.subject, m.subject) +
           "<BR><BR>";
}

void ComposeRules::presetReply(ComposePresets& p, const QuoteTexts& texts, const AnsweredMessage& m,
                               const QByteArray& html, const QByteArray& text) {
    p.quoteHeader = quoteHeader(texts, m);
    p.quotedHtml = html;
    p.quotedText = text;
    p.to = m.from;
    p.subject = replySubject(m.subject);
}

QByteArray ComposeRules::initialDocument(const ComposePresets& p) {
    if (p.quoteHeader.isEmpty())
        return kBlankDocument;
    if (!p.quotedHtml.isEmpty())
        return p.quotedHtml;
    // The text is text: its angle brackets are not markup.
    QByteArray body = p.quotedText;
    body.replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;");
    body.replace('\r', "<BR>").replace("\n", "");
    return "<HTML><HEAD><base target=_blank></HEAD><BODY BGCOLOR=#000000 TEXT=#FFFFFF>" + body +
           "</BODY></HTML>";
}

QString ComposeRules::attachmentDisplayName(const QString& path) {
    return path.size() <= 12 ? path : path.right(12);
}

std::pair<QString, QString> ComposeRules::forwardEntry(const QByteArray& entry) {
    const qsizetype cut = entry.indexOf('\x01');
    if (cut < 0)
        return {Cp1252::toUnicode(entry), Cp1252::toUnicode(entry)};
    return {Cp1252::toUnicode(entry.left(cut)), Cp1252::toUnicode(entry.mid(cut + 1))};
}

int ComposeRules::GetLocalTZ(const QDateTime& when, const QTimeZone& zone, QByteArray& name) {
    if (!zone.isValid())
        return 0;
    name = zone.abbreviation(when).toLatin1().left(32);
    return zone.offsetFromUtc(when);
}

QByteArray ComposeRules::zoneText(int offsetSeconds) {
    const int minutes = qAbs(offsetSeconds) / 60;
    return (offsetSeconds < 0 ? "-" : "+") +
           QByteArray::number(minutes / 60 * 100 + minutes % 60).rightJustified(4, '0');
}

QByteArray ComposeRules::dateText(const QDateTime& when, const QTimeZone& zone) {
    QByteArray name;
    const int offset = GetLocalTZ(when, zone, name);
    // The clock reading of the zone, with the zone written out by hand so a
    // zone Qt cannot name still gets its own offset.
    const QByteArray stamp = MailHeaders::date(when.toOffsetFromUtc(offset));
    return stamp.left(stamp.lastIndexOf(' ') + 1) + zoneText(offset);
}

QList<qsizetype> ComposeRules::usableAccounts(const EmailAccountList& accounts) {
    QList<qsizetype> out;
    for (qsizetype i = 0; i < accounts.size(); ++i)
        if (AccountRecord::isUsable(accounts.at(i)))
            out.append(i);
    return out;
}

qsizetype ComposeRules::preselectedEntry(const EmailAccountList& accounts,
                                         const QList<qsizetype>& usable) {
    const qsizetype def = usable.indexOf(accounts.defaultIndex());
    if (def >= 0)
        return def;
    return usable.isEmpty() ? -1 : 0;
}

} // namespace mirel
