#include "mail/transport/OutboxMessage.h"

#include "mail/transport/AccountRecord.h"

namespace mirel {

QByteArray OutboxMessage::spaceQuotedCommas(QByteArrayView list) {
    QByteArray out = list.toByteArray();
    bool quoted = false;
    for (char& c : out) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && quoted)
            c = ' ';
    }
    return out;
}

void OutboxMessage::readStoredHeaders(QByteArrayView block, QByteArray& cc, QByteArray& bcc,
                                      QList<std::pair<QByteArray, QByteArray>>& others) {
    qsizetype pos = 0;
    while (pos < block.size()) {
        const qsizetype cr = block.indexOf('\r', pos);
        if (cr < 0)
            break; // the rest holds no line end
        const QByteArrayView line = block.sliced(pos, cr - pos);
        pos = cr + 1;
        if (pos < block.size() && block[pos] == '\n')
            ++pos;
        if (line.isEmpty())
            break;
        const qsizetype colon = line.indexOf(':');
        if (colon < 0)
            continue;
        const QByteArray name = line.first(colon).trimmed().toByteArray();
        const QByteArray value = line.sliced(colon + 1).trimmed().toByteArray();
        if (name.compare("cc", Qt::CaseInsensitive) == 0)
            cc = value;
        else if (name.compare("bcc", Qt::CaseInsensitive) == 0)
            bcc = value;
        else
            others.append({name, value});
    }
}

OutgoingMail OutboxMessage::toOutgoing(const Stored& s) {
    OutgoingMail m;
    m.from = s.from;
    m.subject = s.subject;
    m.text = s.text;
    m.html = s.html;
    m.attachments = s.attachments;
    QByteArray cc, bcc;
    readStoredHeaders(s.headers, cc, bcc, m.headers);
    m.to = spaceQuotedCommas(s.to);
    m.cc = spaceQuotedCommas(cc);
    m.bcc = spaceQuotedCommas(bcc);
    return m;
}

QByteArray OutboxMessage::senderKey(QByteArrayView record) {
    return '"' + AccountRecord::field(record, AccountRecord::SenderName) + "\" <" +
           AccountRecord::field(record, AccountRecord::Address) + '>';
}

qsizetype OutboxMessage::sendingAccount(const EmailAccountList& accounts, QByteArrayView from,
                                        bool* matched) {
    if (matched)
        *matched = false;
    for (qsizetype i = 0; i < accounts.size(); ++i) {
        if (senderKey(accounts.at(i)) == from) {
            if (matched)
                *matched = true;
            return i;
        }
    }
    return accounts.size() - 1;
}

} // namespace mirel
