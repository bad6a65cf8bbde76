#include "mail/transport/ServerTrust.h"

#include "platform/Cp1252.h"
#include "platform/IniDocument.h"
#include "platform/IniFile.h"
#include "platform/PrivateFiles.h"

#include <QFileInfo>

namespace mirel {
namespace {

bool isFingerprint(const QByteArray& v) {
    if (v.size() != 64)
        return false;
    for (char c : v)
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f')))
            return false;
    return true;
}

// "ab:cd:…" in two lines of sixteen pairs, the way certificate viewers show it.
QString grouped(const QByteArray& fingerprint) {
    QString out;
    for (qsizetype i = 0; i < fingerprint.size(); i += 2) {
        if (i)
            out += i == 32 ? QLatin1Char('\n') : QLatin1Char(':');
        out += QString::fromLatin1(fingerprint.mid(i, 2));
    }
    return out;
}

} // namespace

QByteArray ServerTrust::sectionFor(const MailServer& server) {
    return server.host + ':' + QByteArray::number(server.port);
}

void ServerTrust::apply(MailServer& server) const {
    QByteArray bytes;
    if (!IniFile::load(m_file, bytes))
        return;
    const IniDocument doc(bytes);
    const QByteArray section = sectionFor(server);
    const QByteArray fingerprint = doc.value(section, "Fingerprint").value_or("").toLower();
    if (isFingerprint(fingerprint))
        server.pinnedFingerprint = fingerprint;
    if (doc.value(section, "Plaintext").value_or("").trimmed() == "1")
        server.plaintextAllowed = true;
}

ServerTrust::Question ServerTrust::questionFor(const MailServer& used, const TransportError& e) {
    if (e.noTls() && !used.plaintextAllowed)
        return Question::NoTls;
    if (!e.untrustedCertificate() || e.peerFingerprint == used.pinnedFingerprint)
        return Question::None;
    return used.pinnedFingerprint.isEmpty() ? Question::NewCertificate
                                            : Question::ChangedCertificate;
}

QString ServerTrust::title(Question q) {
    return q == Question::NoTls ? QStringLiteral("Connect without encryption?")
                                : QStringLiteral("Trust this certificate?");
}

QString ServerTrust::text(const MailServer& server, Question q, const QByteArray& fingerprint) {
    const QString where =
        QStringLiteral("%1 port %2").arg(Cp1252::toUnicode(server.host)).arg(server.port);
    switch (q) {
    case Question::NoTls:
        return QStringLiteral("The server %1 offers no encryption (TLS). Your password and your "
                              "mail would cross the network readable by anyone on the way.\n\n"
                              "Nothing has been sent yet. Connect to this server without "
                              "encryption from now on?")
            .arg(where);
    case Question::NewCertificate:
        return QStringLiteral("The server %1 shows a certificate this computer does not trust "
                              "(a home server's own certificate looks like this, and so does "
                              "someone listening in between).\n\nSHA-256 fingerprint:\n%2\n\n"
                              "Nothing has been sent yet. Trust this certificate for this "
                              "server from now on?")
            .arg(where, grouped(fingerprint));
    case Question::ChangedCertificate:
        return QStringLiteral("The certificate of %1 has changed since you accepted it. If the "
                              "server's owner did not renew it, someone may be listening in "
                              "between.\n\nNew SHA-256 fingerprint:\n%2\n\nNothing has been sent "
                              "yet. Trust the new certificate from now on?")
            .arg(where, grouped(fingerprint));
    case Question::None:
        break;
    }
    return {};
}

bool ServerTrust::remember(const MailServer& server, Question q,
                           const QByteArray& fingerprint) const {
    makePrivateFolder(QFileInfo(m_file).absolutePath());
    const QByteArray section = sectionFor(server);
    return q == Question::NoTls ? bool(IniFile::write(m_file, section, "Plaintext", "1"))
                                : bool(IniFile::write(m_file, section, "Fingerprint", fingerprint));
}

} // namespace mirel
