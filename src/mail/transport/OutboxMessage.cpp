#include "mail/transport/OutboxMessage.h"

#include "mail/transport/AccountRecord.h"
#include "mail/view/MessageView.h"

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

QByteArray OutboxMessage::crlf(QByteArrayView body) {
    QByteArray out = body.toByteArray();
    out.replace("\r\n", "\n").replace('\r', '\n').replace("\n", "\r\n");
    return out;
}

OutgoingMail OutboxMessage::toOutgoing(const Stored& s) {
    OutgoingMail m;
    m.from = s.from;
    m.subject = s.subject;
    m.text = crlf(s.text);
    m.html = crlf(s.html);
    m.attachments = s.attachments;
    // The store keeps the name as a parameter (name="a.pdf"); the recipient
    // must see the plain name.
    for (OutgoingMail::Attachment& a : m.attachments)
        a.fileName = MessageView::attachmentName(a.fileName);
    QByteArray cc, bcc;
    readStoredHeaders(s.headers, cc, bcc, m.headers);
    // A list too long for the index row is kept whole in the header block.
    QByteArray to = s.to;
    for (qsizetype i = 0; i < m.headers.size(); ++i)
        if (m.headers[i].first.compare("to", Qt::CaseInsensitive) == 0)
            to = m.headers.takeAt(i--).second;
    m.to = spaceQuotedCommas(to);
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
