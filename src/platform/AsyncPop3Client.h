#pragma once
// The POP3 client as the send/receive session drives it: one action at a
// time, started from the user-interface thread, run on a worker thread, its
// end reported back on the starting thread by a queued signal (completed or
// failed, never both, exactly one per started action). Results of an action
// (the count after Connect, the message after Fetch) are read on the
// starting thread after its signal; the worker does not touch them again
// until the next start.
//
// Read-ahead: after fetching message n the worker goes straight on to n + 1,
// while the starting thread stores n; a Fetch of n + 1 then only hands over
// what is already there. The server sees the same commands in the same
// order as without it (the session fetches every message before it
// deletes any); a session that stops early has sent one RETR more.
#include "platform/MailServer.h"
#include "platform/Pop3Client.h"
#include "platform/TransportError.h"

#include <QObject>
#include <QThread>
#include <atomic>

namespace mirel {

/// Pop3Client on a worker thread, with the actions numbered as the session
/// numbers them.
class AsyncPop3Client : public QObject {
    Q_OBJECT
public:
    enum Action { Connect = 3, Logout = 8, Delete = 10, Fetch = 13 };

    explicit AsyncPop3Client(QObject* parent = nullptr);
    ~AsyncPop3Client() override;

    void setServer(const MailServer& server) { m_server = server; }
    /// The 1-based message that Fetch and Delete act on.
    void setMessageNumber(int n) { m_messageNumber = n; }
    int messageNumber() const { return m_messageNumber; }
    /// Trace lines (secrets hidden) are sent as traced() while this is on.
    void setTraceEnabled(bool on) { m_traceEnabled = on; }

    /// False, and nothing starts, while another action runs or for an
    /// unknown action number.
    bool start(int action);
    bool isBusy() const { return m_busy; }

    int messageCount() const { return m_count; }
    const QByteArray& message() const { return m_message; }
    /// The whole error behind the last failed(), certificate included.
    const TransportError& lastFailure() const { return m_lastFailure; }

    /// Stops a running action, logs out and waits for the worker; no
    /// signal follows for the stopped action. Safe to call twice.
    void close();

Q_SIGNALS:
    void completed(int action);
    void failed(int number, const QByteArray& description);
    void traced(const QByteArray& text);
    void progress(qint64 done, qint64 total);

private:
    void run(int action, const MailServer& server, int messageNumber);
    void readAhead(int n);
    void finish(quint64 generation, int action, const TransportError& error);

    QThread m_thread;
    QObject m_worker;    // lives on m_thread; the context the actions run in
    Pop3Client m_client; // used only on m_thread
    MailServer m_server;
    int m_messageNumber = 0;
    std::atomic<bool> m_traceEnabled{false};
    bool m_busy = false;
    quint64 m_generation = 0; // bumped by close(): late results are dropped
    int m_count = 0;
    QByteArray m_message;
    QByteArray m_fetched; // written on m_thread, handed over in finish()
    struct ReadAhead {
        int number = 0; // 0: nothing read ahead
        QByteArray message;
        TransportError error;
    };
    ReadAhead m_ahead; // used only on m_thread
    int m_fetchedCount = 0;
    TransportError m_lastError; // likewise
    TransportError m_lastFailure;
};

} // namespace mirel
