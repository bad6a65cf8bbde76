#include "platform/Pop3Client.h"

#include <curl/curl.h>

namespace mirel {
namespace {

struct Sink {
    QByteArray* message;
    qint64 max;
};

// Returning less than was given stops the transfer: a server that sends
// more than it announced cannot fill the memory.
size_t appendTo(char* data, size_t size, size_t count, void* target) {
    auto* sink = static_cast<Sink*>(target);
    if (sink->message->size() + qint64(size * count) > sink->max)
        return 0;
    sink->message->append(data, qsizetype(size * count));
    return size * count;
}

QByteArray megabytes(qint64 bytes) {
    return QByteArray::number((bytes + 1024 * 1024 - 1) / (1024 * 1024)) + " MB";
}

size_t discard(char*, size_t size, size_t count, void*) {
    return size * count;
}

} // namespace

QByteArray Pop3Client::urlFor(const MailServer& server, int message) {
    const bool tls = implicitTls(server);
    const QByteArray host = server.host.contains(':') ? '[' + server.host + ']' : server.host;
    QByteArray u =
        (tls ? "pop3s://" : "pop3://") + host + ':' + QByteArray::number(server.port) + '/';
    if (message > 0)
        u += QByteArray::number(message);
    return u;
}

bool Pop3Client::implicitTls(const MailServer& server) {
    return server.tls == MailServer::Tls::Implicit ||
           (server.tls == MailServer::Tls::ByPort && server.port == kImplicitTlsPort);
}

TransportError Pop3Client::connect(const MailServer& server) {
    logout();
    m_server = server;
    m_easy.clearAbort();
    m_easy.configure(server);
    if (!implicitTls(server))
        m_easy.requireStartTls(server);
    // STAT logs in and gives the count on one line, so a garbled count is
    // caught before the listing is read.
    TransportError e = command("STAT", 0);
    if (e)
        return e;
    const QList<QByteArray>& replies = m_easy.replyLines();
    if (replies.isEmpty() || !replies.last().startsWith("+OK")) {
        logout();
        return {CURLE_WEIRD_SERVER_REPLY, "The server did not answer STAT"};
    }
    const QList<QByteArray> words = replies.last().split(' ');
    bool ok = false;
    m_count = words.size() > 1 ? words[1].toInt(&ok) : 0;
    if (!ok || m_count < 0) {
        logout();
        return {CURLE_WEIRD_SERVER_REPLY,
                "The server's message count is not a number: " + replies.last()};
    }
    if (m_count > 0) {
        if (TransportError listed = readSizes()) {
            logout();
            return listed;
        }
    }
    m_connected = true;
    return {};
}

// One LIST for the whole mailbox instead of one per message: every fetch
// then costs the server one command, not two.
TransportError Pop3Client::readSizes() {
    QByteArray listing;
    if (const TransportError e = transfer(0, listing))
        return e;
    // "n size" per line; a message the listing leaves out is fetched
    // without a size check (the fetch's own cap still holds).
    m_sizes.assign(size_t(m_count), -1);
    for (const QByteArray& line : listing.split('\n')) {
        const QList<QByteArray> words = line.trimmed().split(' ');
        bool ok = false;
        const int n = words.size() > 1 ? words[0].toInt(&ok) : 0;
        if (ok && n >= 1 && n <= m_count)
            m_sizes[size_t(n - 1)] = words[1].toLongLong();
    }
    return {};
}

TransportError Pop3Client::command(const char* verb, int message) {
    CURL* c = m_easy.handle();
    curl_easy_setopt(c, CURLOPT_URL, urlFor(m_server, message).constData());
    curl_easy_setopt(c, CURLOPT_CUSTOMREQUEST, verb);
    curl_easy_setopt(c, CURLOPT_NOBODY, 1L);
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, &discard);
    return m_easy.perform();
}

TransportError Pop3Client::notConnected() const {
    return {CURLE_SEND_ERROR, "Not logged in to a POP3 server"};
}

TransportError Pop3Client::fetch(int n, QByteArray& message) {
    message.clear();
    if (!m_connected)
        return notConnected();
    // The size the server announced decides before anything is fetched.
    const qint64 size = n >= 1 && size_t(n) <= m_sizes.size() ? m_sizes[size_t(n - 1)] : -1;
    if (size > m_maxMessageSize)
        return {kMessageTooLarge, "Message " + QByteArray::number(n) + " (" + megabytes(size) +
                                      ") is larger than " + megabytes(m_maxMessageSize) +
                                      " and stays on the server"};
    TransportError e = transfer(n, message);
    if (e.number == CURLE_WRITE_ERROR)
        e.description = "Message " + QByteArray::number(n) + " grew beyond the " +
                        megabytes(m_maxMessageSize) + " limit while it was fetched";
    // A message ends with CR LF and a line holding a dot. curl also takes
    // the server hanging up as an end, which would pass half a message off
    // as a whole one; what it hands over of a complete message always ends
    // with that CR LF. (A hang-up exactly at a line end still gets past this
    // check; the next command then finds the line gone.)
    if (!e && !message.isEmpty() && !message.endsWith("\r\n"))
        e = {CURLE_PARTIAL_FILE,
             "The server closed the connection before the end of message " + QByteArray::number(n)};
    if (e)
        message.clear();
    return e;
}

TransportError Pop3Client::transfer(int message, QByteArray& into) {
    Sink sink{&into, m_maxMessageSize};
    CURL* c = m_easy.handle();
    curl_easy_setopt(c, CURLOPT_URL, urlFor(m_server, message).constData());
    curl_easy_setopt(c, CURLOPT_CUSTOMREQUEST, nullptr);
    curl_easy_setopt(c, CURLOPT_NOBODY, 0L);
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, &appendTo);
    curl_easy_setopt(c, CURLOPT_WRITEDATA, &sink);
    const TransportError e = m_easy.perform();
    curl_easy_setopt(c, CURLOPT_WRITEDATA, nullptr);
    return e;
}

TransportError Pop3Client::remove(int n) {
    if (!m_connected)
        return notConnected();
    return command("DELE", n);
}

void Pop3Client::logout() {
    m_easy.reset();
    m_connected = false;
    m_count = 0;
    m_sizes.clear();
}

} // namespace mirel
