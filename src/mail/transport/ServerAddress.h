#pragma once
// An account's server field is a host name, or a host name, a colon and a
// port. Without a colon the protocol's standard port applies (110 for POP3,
// 25 for SMTP); with one, the port is the number the text after the colon
// starts with. Nothing is checked beyond that: a bad field shows up as an
// error when the session connects.
#include "platform/MailServer.h"

namespace mirel {

/// Turns account fields into the server descriptions the clients take.
class ServerAddress {
  public:
    static constexpr int kPop3Port = 110;
    static constexpr int kSmtpPort = 25;

    /// Host and port from a server field.
    static MailServer parse(QByteArrayView field, int defaultPort);
    /// POP3: fields 1, 2 and 3 of the record.
    static MailServer pop3For(QByteArrayView record);
    /// SMTP: field 6, with fields 2 and 3 as log-in only when field 5 is "1".
    static MailServer smtpFor(QByteArrayView record);
};

} // namespace mirel
