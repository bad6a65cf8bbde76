#pragma once
// A POP3 session on one libcurl handle: connect() logs in and reads the
// message count (STAT) and every message's size (LIST); fetch() and
// remove() then run on the same connection, so the server sees one log-in
// per session; logout() sends QUIT, which is when the server really deletes
// what remove() marked.
//
// TLS: port 995 speaks TLS from the first byte; on any other port STLS is
// used when the server offers it. Certificates are always checked: a server
// that offers TLS with a certificate that fails the check is an error, not
// a reason to carry on in the clear.
//
// Blocking; one thread at a time. AsyncPop3Client runs it off the UI thread.
#include "platform/CurlEasy.h"

#include <vector>

namespace mirel {

/// Blocking POP3 client: log in, count, fetch, delete, log out.
class Pop3Client {
public:
    static constexpr int kImplicitTlsPort = 995;
    /// Messages above this size are not fetched: they stay on the server.
    static constexpr qint64 kDefaultMaxMessageSize = 100 * 1024 * 1024;
    /// The error number of a message left on the server for its size; the
    /// connection stays usable for the next message.
    static constexpr int kMessageTooLarge = 10001;

    void setMaxMessageSize(qint64 bytes) { m_maxMessageSize = bytes; }

    void setTrace(CurlEasy::Trace trace) { m_easy.setTrace(std::move(trace)); }
    void setProgress(CurlEasy::Progress progress) { m_easy.setProgress(std::move(progress)); }

    /// Logs in (ending any earlier session first) and reads the count.
    TransportError connect(const MailServer& server);
    bool isConnected() const { return m_connected; }
    int messageCount() const { return m_count; }
    /// Message n (1-based) as the server stores it, dot-stuffing undone.
    TransportError fetch(int n, QByteArray& message);
    /// Marks message n for deletion at logout.
    TransportError remove(int n);
    /// Sends QUIT and closes the connection; harmless when not connected.
    void logout();
    /// From another thread: the running action fails soon with an abort error.
    void abort() { m_easy.abort(); }
    /// The address of message n (0: the mailbox); its scheme shows the TLS kind.
    static QByteArray urlFor(const MailServer& server, int message);

private:
    static bool implicitTls(const MailServer& server);
    TransportError command(const char* verb, int message);
    TransportError readSizes();
    /// Reads what the server sends for message n (0: the mailbox's listing)
    /// into into, up to the largest message size.
    TransportError transfer(int message, QByteArray& into);
    TransportError notConnected() const;

    CurlEasy m_easy;
    MailServer m_server;
    int m_count = 0;
    std::vector<qint64> m_sizes; // announced size of message n at n - 1; -1: not listed
    qint64 m_maxMessageSize = kDefaultMaxMessageSize;
    bool m_connected = false;
};

} // namespace mirel
