#include "servers/TestCertificate.h"

#include <QProcess>

namespace mirel::test {

TestCertificate TestCertificate::make(const QString& folder) {
    TestCertificate c{folder + QStringLiteral("/cert.pem"), folder + QStringLiteral("/key.pem")};
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    const QString args =
        QStringLiteral("req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=127.0.0.1 -addext "
                       "subjectAltName=IP:127.0.0.1,DNS:localhost");
    p.start(QStringLiteral("openssl"),
            args.split(u' ') + QStringList{QStringLiteral("-keyout"), c.keyFile,
                                           QStringLiteral("-out"), c.certFile});
    if (!p.waitForFinished(60000) || p.exitCode() != 0)
        qFatal("openssl could not make a test certificate: %s", p.readAll().constData());
    return c;
}

} // namespace mirel::test
