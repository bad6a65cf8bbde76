#pragma once
// A real dovecot POP3 server on 127.0.0.1 for one test: its own
// configuration, run and state folders, a passwd-file of users and one
// maildir per user, all inside a temporary folder. It needs no system user
// of its own: run as root, the login and mail processes use "nobody"
// (dovecot refuses root for both); run as anyone else, everything runs as
// that user. Stopped by its PID when the object goes.
#include "servers/TestCertificate.h"

#include <QByteArray>
#include <QProcess>
#include <QTemporaryDir>
#include <optional>

namespace mirel::test {

/// One dovecot POP3 server, started by start() and stopped by the destructor.
class DovecotServer {
  public:
    DovecotServer();
    ~DovecotServer();

    /// Before start(): a user with a clear-text password.
    void addUser(const QByteArray& name, const QByteArray& password);
    /// With a certificate the server offers STLS; without one it speaks POP3
    /// in the clear only.
    bool start(std::optional<TestCertificate> tls = std::nullopt);
    void stop();

    int port() const { return m_port; }

    /// Puts a message into the user's mailbox (any time, also while running).
    void deliver(const QByteArray& user, const QByteArray& message);
    /// Messages the user's mailbox holds now.
    int messagesOf(const QByteArray& user) const;
    /// The server's log so far (log-ins, errors).
    QByteArray log() const;

  private:
    QString maildir(const QByteArray& user) const;

    QTemporaryDir m_dir;
    QProcess m_process;
    QByteArray m_passwd;
    int m_port = 0;
    unsigned m_mailUid = 0, m_mailGid = 0;
    int m_delivered = 0;
};

} // namespace mirel::test
