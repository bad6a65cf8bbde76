#pragma once
// "servers.ini" beside "accounts.ini" remembers what the user allowed for a
// server that the system alone would refuse, one section per server as the
// account writes it with the port ("[mail.example.org:110]"):
//   Fingerprint = SHA-256 of the accepted certificate, 64 lower-case hex
//                 digits; that certificate and no other is trusted;
//   Plaintext   = 1 when the user allowed the server without TLS.
// Scripts may write the file to approve a server beforehand. It is created
// 0600, like the accounts.
#include "platform/MailServer.h"
#include "platform/TransportError.h"

#include <QString>

namespace mirel {

/// The remembered trust decisions and the question that leads to them.
class ServerTrust {
public:
    enum class Question { None, NoTls, NewCertificate, ChangedCertificate };

    static inline const QString kLiteral = QStringLiteral("\\email\\servers.ini");

    explicit ServerTrust(QString file) : m_file(std::move(file)) {}

    /// "host:port".
    static QByteArray sectionFor(const MailServer& server);
    /// Adds what was allowed for the server.
    void apply(MailServer& server) const;

    /// What to ask after error, for the server as it was used; None when the
    /// failure is not about trust.
    static Question questionFor(const MailServer& used, const TransportError& error);
    static QString title(Question q);
    /// Plain text for the dialog, naming the server and the fingerprint.
    static QString text(const MailServer& server, Question q, const QByteArray& fingerprint);

    /// Writes the user's "yes"; false when the file could not be written.
    bool remember(const MailServer& server, Question q, const QByteArray& fingerprint) const;

private:
    QString m_file;
};

} // namespace mirel
