#pragma once
// aiosmtpd under /usr/bin/python3 on 127.0.0.1 (smtp_sink.py beside this
// file): every message it accepts is saved with a summary made by Python's
// email package, which the tests read back as JSON.
#include "servers/TestCertificate.h"

#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QTemporaryDir>
#include <optional>

namespace mirel::test {

/// One SMTP sink server, stopped by its PID when the object goes.
class SmtpSinkServer {
public:
    struct Options {
        std::optional<TestCertificate> tls; // STARTTLS offered
        QByteArray login;                   // "user:password": log-in required
        QByteArray reject;                  // recipients containing this are refused
    };

    ~SmtpSinkServer();
    bool start(const Options& options);
    void stop();
    int port() const { return m_port; }

    /// The summaries of the messages received so far, in order (header
    /// names in lower case).
    QList<QJsonObject> messages() const;

private:
    QTemporaryDir m_dir;
    QProcess m_process;
    int m_port = 0;
};

} // namespace mirel::test
