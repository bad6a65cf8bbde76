#include "mail/transport/ServerAddress.h"

#include "mail/transport/AccountRecord.h"
#include "settings/CommaList.h"

namespace mirel {

MailServer ServerAddress::parse(QByteArrayView field, int defaultPort) {
    MailServer s;
    const qsizetype colon = field.indexOf(':');
    if (colon < 0) {
        s.host = field.toByteArray();
        s.port = defaultPort;
    } else {
        s.host = field.first(colon).toByteArray();
        const long port = leadingNumber(field.sliced(colon + 1));
        s.port = port > 0 && port < 65536 ? int(port) : 0;
    }
    return s;
}

MailServer ServerAddress::pop3For(QByteArrayView record) {
    MailServer s = parse(AccountRecord::field(record, AccountRecord::Pop3Server), kPop3Port);
    s.userName = AccountRecord::field(record, AccountRecord::UserName);
    s.password = AccountRecord::field(record, AccountRecord::Password);
    return s;
}

MailServer ServerAddress::smtpFor(QByteArrayView record) {
    MailServer s = parse(AccountRecord::field(record, AccountRecord::SmtpServer), kSmtpPort);
    if (AccountRecord::field(record, AccountRecord::SmtpLogin) == "1") {
        s.userName = AccountRecord::field(record, AccountRecord::UserName);
        s.password = AccountRecord::field(record, AccountRecord::Password);
    }
    return s;
}

} // namespace mirel
