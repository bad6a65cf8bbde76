#pragma once
#include <QByteArray>
#include <QString>

namespace mirel {

/// Where and as whom a mail client connects.
struct MailServer {
    /// TLS from the first byte, or STARTTLS when the server offers it.
    /// ByPort picks the first on the protocol's TLS port (995, 465).
    enum class Tls { ByPort, Implicit, WhenOffered };

    QByteArray host;
    int port = 0;
    QByteArray userName; // empty: no log-in (SMTP only)
    QByteArray password;
    /// Certificates to trust instead of the system's (a private CA, tests).
    QString caFile;
    Tls tls = Tls::ByPort;
    int connectTimeoutSeconds = 30;
    /// A transfer that moves nothing for this long is given up.
    int stallTimeoutSeconds = 60;
};

} // namespace mirel
