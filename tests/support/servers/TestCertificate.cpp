#include "servers/TestCertificate.h"

#include <QProcess>

namespace mirel::test {

TestCertificate TestCertificate::make(const QString& folder) {
    TestCertificate c{folder + QStringLiteral("/cert.pem"), folder + QStringLiteral("/key.pem")};
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QStringLiteral("openssl"),
            {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
             QStringLiteral("rsa:2048"), QStringLiteral("-nodes"), QStringLiteral("-days"),
             QStringLiteral("2"), QStringLiteral("-subj"), QStringLiteral("/CN=127.0.0.1"),
             QStringLiteral("-addext"), QStringLiteral("subjectAltName=IP:127.0.0.1,DNS:localhost"),
             QStringLiteral("-keyout"), c.keyFile, QStringLiteral("-out"), c.certFile});
    if (!p.waitForFinished(60000) || p.exitCode() != 0)
        qFatal("openssl could not make a test certificate: %s", p.readAll().constData());
    return c;
}

} // namespace mirel::test
