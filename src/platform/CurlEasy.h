#pragma once
// One libcurl easy handle with the settings every mail client here shares:
// certificate checks always on (against the system's CAs or the one
// certificate the user accepted for the server), time limits from the server description,
// an error buffer turned into TransportError, an abort flag another thread
// may raise, and a protocol trace with secrets removed.
//
// The handle keeps its connection between performs, which is what lets a
// POP3 session log in once and then run many commands. Destroying it (or
// reset()) closes that connection, and for POP3 and SMTP that sends QUIT.
#include "platform/MailServer.h"
#include "platform/TransportError.h"

#include <QList>
#include <atomic>
#include <functional>

typedef void CURL;

namespace mirel {

/// RAII owner of a curl easy handle for the mail clients.
class CurlEasy {
  public:
    using Trace = std::function<void(QByteArrayView)>;
    using Progress = std::function<void(qint64 done, qint64 total)>;

    CurlEasy();
    ~CurlEasy();
    CurlEasy(const CurlEasy&) = delete;
    CurlEasy& operator=(const CurlEasy&) = delete;

    CURL* handle() const { return m_curl; }

    /// Closes the connection (QUIT) and starts over with a fresh handle.
    void reset();
    /// Applies time limits, certificate settings and the callbacks.
    void configure(const MailServer& server);
    /// STARTTLS before anything else is sent; a server that does not offer
    /// it is refused (the password never goes out in clear) unless the user
    /// allowed that server without TLS.
    void requireStartTls(const MailServer& server);

    void setTrace(Trace trace) { m_trace = std::move(trace); }
    void setProgress(Progress progress) { m_progress = std::move(progress); }
    /// Safe from any thread: the running transfer stops at its next check.
    void abort() { m_abort = true; }
    void clearAbort() { m_abort = false; }

    /// Runs the transfer set up on handle(); the server's reply lines (the
    /// protocol's "headers") are collected in replyLines().
    TransportError perform();
    const QList<QByteArray>& replyLines() const { return m_replies; }

    /// curl's code and message, with the detail of the error buffer.
    TransportError errorFor(int code) const;

  private:
    friend struct CurlCallbacks;
    void init();

    CURL* m_curl = nullptr;
    char m_errorBuffer[256] = {};
    QList<QByteArray> m_replies;
    Trace m_trace;
    Progress m_progress;
    std::atomic<bool> m_abort{false};
    qint64 m_lastDone = -1;
    QByteArray m_pin;             // the accepted certificate's SHA-256, or empty
    QByteArray m_peerFingerprint; // of the certificate seen in this perform
};

} // namespace mirel
