#include "servers/SmtpSinkServer.h"
#include "BuildPaths.h"

#include "TestSupport.h"
#include "servers/LoopbackPort.h"

#include <QFile>
#include <QJsonDocument>

namespace mirel::test {

SmtpSinkServer::~SmtpSinkServer() {
    stop();
}

bool SmtpSinkServer::start(const Options& o) {
    m_port = freeLoopbackPort();
    QStringList args{QStringLiteral(MIREL_SOURCE_DIR "/tests/support/servers/smtp_sink.py"),
                     QStringLiteral("--port"), QString::number(m_port), QStringLiteral("--folder"),
                     m_dir.path()};
    if (o.tls)
        args << QStringLiteral("--cert") << o.tls->certFile << QStringLiteral("--key")
             << o.tls->keyFile;
    if (!o.login.isEmpty())
        args << QStringLiteral("--login") << QString::fromUtf8(o.login);
    if (!o.reject.isEmpty())
        args << QStringLiteral("--reject") << QString::fromUtf8(o.reject);
    // Handshakes the tests break on purpose make aiosmtpd print tracebacks.
    m_process.setStandardErrorFile(m_dir.path() + QStringLiteral("/server.log"));
    m_process.start(QStringLiteral("/usr/bin/python3"), args);
    if (!m_process.waitForStarted(10000))
        return false;
    // "READY" comes once the server listens.
    while (!m_process.canReadLine() && m_process.waitForReadyRead(15000)) {
    }
    return m_process.readLine().startsWith("READY") && waitForPort(m_port, 5000);
}

void SmtpSinkServer::stop() {
    stopProcess(m_process);
}

QList<QJsonObject> SmtpSinkServer::messages() const {
    QList<QJsonObject> out;
    for (int n = 1;; ++n) {
        const QString file = m_dir.path() + QStringLiteral("/%1.json").arg(n);
        if (!QFile::exists(file))
            return out;
        out.append(QJsonDocument::fromJson(readAll(file)).object());
    }
}

} // namespace mirel::test
