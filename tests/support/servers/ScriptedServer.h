#pragma once
// A one-connection TCP server on 127.0.0.1 for fault tests: it accepts one
// client, answers each line the client sends with the next scripted reply,
// and at the end of the script either hangs up or goes silent. Real servers
// cover the protocols; this one covers the peer that misbehaves.
#include <QByteArray>
#include <QList>
#include <atomic>
#include <thread>

namespace mirel::test {

/// Scripted peer that drops the line or stops answering.
class ScriptedServer {
  public:
    enum class Ending { HangUp, Silence };

    /// greeting is sent on connect; replies[i] answers the client's i-th line.
    ScriptedServer(QByteArray greeting, QList<QByteArray> replies, Ending ending);
    ~ScriptedServer();
    int port() const { return m_port; }
    /// What the client sent, line by line (read after the client is done).
    QList<QByteArray> received() const { return m_received; }

  private:
    void serve();

    QByteArray m_greeting;
    QList<QByteArray> m_replies;
    Ending m_ending;
    int m_listen = -1;
    int m_port = 0;
    std::atomic<bool> m_stop{false};
    QList<QByteArray> m_received;
    std::thread m_thread;
};

} // namespace mirel::test
