#include "platform/MailHeaders.h"

#include <QRandomGenerator>
#include <algorithm>

namespace mirel {
namespace {

constexpr qsizetype kMaxEncodedWord = 75;
const QByteArray kWordStart = "=?windows-1252?Q?";
const QByteArray kWordEnd = "?=";

bool needsEncoding(QByteArrayView text) {
    for (char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (u >= 0x7F || (u < 0x20 && c != '\t'))
            return true;
    }
    // Text that looks like an encoded word would be decoded by the reader.
    return text.contains("=?");
}

// The Q encoding of one byte as allowed inside a phrase (RFC 2047 5.3).
QByteArray qByte(char c) {
    const auto u = static_cast<unsigned char>(c);
    if (c == ' ')
        return "_";
    if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '!' ||
        c == '*' || c == '+' || c == '-' || c == '/')
        return QByteArray(1, c);
    static const char hex[] = "0123456789ABCDEF";
    const char encoded[] = {'=', hex[u >> 4], hex[u & 15]};
    return QByteArray(encoded, 3);
}

QByteArray encodedWords(QByteArrayView text) {
    QList<QByteArray> words;
    QByteArray word;
    const qsizetype room = kMaxEncodedWord - kWordStart.size() - kWordEnd.size();
    for (char c : text) {
        const QByteArray q = qByte(c);
        if (word.size() + q.size() > room) {
            words.append(kWordStart + word + kWordEnd);
            word.clear();
        }
        word += q;
    }
    if (!word.isEmpty() || words.isEmpty())
        words.append(kWordStart + word + kWordEnd);
    // Whitespace between encoded words is not part of the text; folding
    // there keeps every line short.
    return words.join("\r\n ");
}

bool isAtomText(QByteArrayView text) {
    for (char c : text)
        if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
              QByteArrayView("!#$%&'*+-/=?^_`{|}~ ").contains(c)))
            return false;
    return true;
}

bool isDomain(QByteArrayView text) {
    if (text.isEmpty())
        return false;
    for (char c : text)
        if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
              c == '-' || c == '.'))
            return false;
    return true;
}

QByteArray unescapeQuoted(const QByteArray& text) {
    QByteArray out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        out += text[i];
    }
    return out;
}

QByteArray trimmedBytes(QByteArrayView v) {
    return v.trimmed().toByteArray();
}

} // namespace

QByteArray MailHeaders::encodeText(QByteArrayView text) {
    return needsEncoding(text) ? encodedWords(text) : text.toByteArray();
}

QList<Mailbox> MailHeaders::parseAddressList(QByteArrayView list) {
    QList<QByteArrayView> pieces;
    bool quoted = false;
    int angle = 0;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= list.size(); ++i) {
        const char c = i < list.size() ? list[i] : ',';
        if (quoted && c == '\\' && i + 1 < list.size())
            ++i; // an escaped character inside quotes is never a delimiter
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted && c == '<')
            ++angle;
        else if (!quoted && c == '>' && angle > 0)
            --angle;
        else if (c == ',' && ((!quoted && angle == 0) || i == list.size())) {
            pieces.append(list.sliced(start, i - start));
            start = i + 1;
        }
    }
    QList<Mailbox> out;
    for (QByteArrayView piece : pieces) {
        piece = piece.trimmed();
        if (piece.isEmpty())
            continue;
        Mailbox m;
        const qsizetype open = piece.lastIndexOf('<');
        const qsizetype close = piece.lastIndexOf('>');
        if (open >= 0 && close > open) {
            m.address = trimmedBytes(piece.sliced(open + 1, close - open - 1));
            QByteArray name = trimmedBytes(piece.first(open));
            if (name.size() >= 2 && name.startsWith('"') && name.endsWith('"'))
                name = name.mid(1, name.size() - 2);
            m.displayName = unescapeQuoted(name).trimmed();
        } else {
            m.address = piece.toByteArray();
        }
        if (!m.address.isEmpty())
            out.append(m);
    }
    return out;
}

QByteArray MailHeaders::formatAddressList(const QList<Mailbox>& list) {
    QList<QByteArray> out;
    for (const Mailbox& m : list) {
        if (m.displayName.isEmpty()) {
            // A bare address with a list delimiter in it would come apart.
            const bool plain = std::none_of(m.address.begin(), m.address.end(), [](char c) {
                return c == ',' || c == '"' || c == '<' || c == '>' || c == ' ';
            });
            out.append(plain ? m.address : '<' + m.address + '>');
            continue;
        }
        QByteArray name;
        if (needsEncoding(m.displayName))
            name = encodedWords(m.displayName);
        else if (isAtomText(m.displayName))
            name = m.displayName;
        else
            name = '"' + QByteArray(m.displayName).replace('\\', "\\\\").replace('"', "\\\"") + '"';
        out.append(name + " <" + m.address + '>');
    }
    return out.join(",\r\n ");
}

QByteArray MailHeaders::date(const QDateTime& when) {
    static const char* const days[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const QDate d = when.date();
    const QTime t = when.time();
    const int offset = when.offsetFromUtc() / 60;
    const int absOffset = offset < 0 ? -offset : offset;
    return QByteArray(days[d.dayOfWeek() - 1]) + ", " + QByteArray::number(d.day()) + ' ' +
           months[d.month() - 1] + ' ' + QByteArray::number(d.year()) + ' ' +
           t.toString(QStringLiteral("hh:mm:ss")).toLatin1() + ' ' + (offset < 0 ? '-' : '+') +
           QByteArray::number(absOffset / 60).rightJustified(2, '0') +
           QByteArray::number(absOffset % 60).rightJustified(2, '0');
}

QByteArray MailHeaders::messageId(QByteArrayView senderAddress, const QDateTime& when) {
    QByteArray domain;
    if (const qsizetype at = senderAddress.lastIndexOf('@'); at >= 0)
        domain = trimmedBytes(senderAddress.sliced(at + 1));
    if (!isDomain(domain))
        domain = "localhost";
    const quint64 random = QRandomGenerator::global()->generate64();
    return '<' + QByteArray::number(when.toMSecsSinceEpoch(), 36) + '.' +
           QByteArray::number(random, 36) + '@' + domain + '>';
}

} // namespace mirel
