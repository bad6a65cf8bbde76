#pragma once
#include <QByteArray>

namespace mirel {

/// The outcome of a mail-client action: number 0 is success; otherwise the
/// number and description are what the user and the debug log are shown.
struct TransportError {
    int number = 0;
    QByteArray description;
    /// SHA-256 (lower-case hex) of the certificate the server presented,
    /// when the failure happened after it was seen.
    QByteArray peerFingerprint;

    TransportError() = default;
    TransportError(int n, QByteArray what, QByteArray fingerprint = {})
        : number(n), description(std::move(what)), peerFingerprint(std::move(fingerprint)) {}

    explicit operator bool() const { return number != 0; }
    /// The server offers no TLS and the password was therefore not sent.
    bool noTls() const;
    /// The server's certificate was refused (untrusted, or not the one the
    /// user accepted); peerFingerprint names it.
    bool untrustedCertificate() const;
    static TransportError ok() { return {}; }

    /// What went wrong in words a user understands, naming the server
    /// ("Could not connect to mail.example.org port 110: connection
    /// refused"); the technical description stays for the debug log.
    QByteArray inWords(QByteArrayView host, int port) const;
};

} // namespace mirel
