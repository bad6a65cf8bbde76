#pragma once
#include <QByteArray>
#include <QString>

namespace mirel {

/// Where and as whom a mail client connects.
struct MailServer {
    /// TLS from the first byte, or STARTTLS, which the server must offer
    /// unless plaintextAllowed.
    /// ByPort picks the first on the protocol's TLS port (995, 465).
    enum class Tls { ByPort, Implicit, WhenOffered };

    QByteArray host;
    int port = 0;
    QByteArray userName; // empty: no log-in (SMTP only)
    QByteArray password;
    /// Certificates to trust instead of the system's (a private CA, tests).
    QString caFile;
    /// The user accepted this server without TLS: STARTTLS is still used
    /// when offered, but its absence no longer stops the log-in.
    bool plaintextAllowed = false;
    /// SHA-256 of the one certificate the user accepted for this server (64
    /// lower-case hex digits): that certificate is trusted instead of the
    /// system's judgement, any other is refused before the log-in.
    QByteArray pinnedFingerprint;
    Tls tls = Tls::ByPort;
    int connectTimeoutSeconds = 30;
    /// A transfer that moves nothing for this long is given up.
    int stallTimeoutSeconds = 60;
};

} // namespace mirel
