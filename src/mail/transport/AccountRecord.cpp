#include "mail/transport/AccountRecord.h"

#include "settings/CommaList.h"

namespace mirel {

QByteArray AccountRecord::field(QByteArrayView record, int n) {
    if (n < 0)
        return {};
    qsizetype start = 0;
    for (int skipped = 0; skipped < n; ++skipped) {
        const qsizetype bar = record.indexOf('|', start);
        if (bar < 0)
            return {};
        start = bar + 1;
    }
    qsizetype end = record.indexOf('|', start);
    if (end < 0)
        end = record.size();
    return record.sliced(start, end - start).toByteArray();
}

bool AccountRecord::isDefault(QByteArrayView record) {
    return !record.isEmpty() && record.front() == '*';
}

QByteArray AccountRecord::name(QByteArrayView record) {
    return field(record, MarkerAndName).mid(2);
}

bool AccountRecord::isUsable(QByteArrayView record) {
    return !field(record, Address).isEmpty() && !field(record, SenderName).isEmpty();
}

QByteArray AccountRecord::fresh(QByteArrayView name, bool isDefault) {
    return (isDefault ? kDefaultMarker : kOtherMarker) + name.toByteArray() + QByteArray(8, '|');
}

QByteArray AccountRecord::withMarker(QByteArrayView record, bool isDefault) {
    return (isDefault ? kDefaultMarker : kOtherMarker) + record.toByteArray().mid(2);
}

AccountRecord::Settings AccountRecord::settings(QByteArrayView record) {
    Settings s;
    s.pop3Server = field(record, Pop3Server);
    s.userName = field(record, UserName);
    s.password = field(record, Password);
    s.deleteFromServer = leadingNumber(field(record, DeleteFromServer)) != 0;
    s.smtpLogin = leadingNumber(field(record, SmtpLogin)) != 0;
    s.smtpServer = field(record, SmtpServer);
    s.address = field(record, Address);
    s.senderName = field(record, SenderName);
    return s;
}

QByteArray AccountRecord::edited(QByteArrayView record, const Settings& s) {
    QByteArray r = field(record, MarkerAndName);
    for (const QByteArray& f :
         {s.pop3Server, s.userName, s.password, QByteArray(s.deleteFromServer ? "1" : "0"),
          QByteArray(s.smtpLogin ? "1" : "0"), s.smtpServer, s.address, s.senderName})
        r += '|' + f;
    return r + '|';
}

} // namespace mirel
