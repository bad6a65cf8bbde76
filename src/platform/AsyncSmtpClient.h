#pragma once
// SmtpClient on a worker thread: send() returns at once, and exactly one of
// sent() or failed() follows on the starting thread for each send that
// started. One message at a time.
#include "platform/SmtpClient.h"

#include <QObject>
#include <QThread>
#include <atomic>

namespace mirel {

/// Sends one message at a time off the user-interface thread.
class AsyncSmtpClient : public QObject {
    Q_OBJECT
  public:
    explicit AsyncSmtpClient(QObject* parent = nullptr);
    ~AsyncSmtpClient() override;

    void setTraceEnabled(bool on) { m_traceEnabled = on; }
    /// False, and nothing starts, while a message is on its way.
    bool send(const MailServer& server, const OutgoingMail& mail, const QDateTime& now);
    bool isBusy() const { return m_busy; }
    /// The whole error behind the last failed(), certificate included.
    const TransportError& lastFailure() const { return m_lastFailure; }
    /// Stops the running send; no signal follows for it.
    void cancel();

  Q_SIGNALS:
    void sent();
    void failed(int number, const QByteArray& description);
    void traced(const QByteArray& text);
    void progress(qint64 done, qint64 total);

  private:
    void finish(quint64 generation, const TransportError& error);

    QThread m_thread;
    QObject m_worker;
    SmtpClient m_client; // used only on m_thread
    std::atomic<bool> m_traceEnabled{false};
    bool m_busy = false;
    quint64 m_generation = 0;
    TransportError m_lastFailure;
};

} // namespace mirel
