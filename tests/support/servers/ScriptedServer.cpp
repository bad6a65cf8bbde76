#include "servers/ScriptedServer.h"

#include "servers/LoopbackPort.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace mirel::test {

ScriptedServer::ScriptedServer(QByteArray greeting, QList<QByteArray> replies, Ending ending)
    : m_greeting(std::move(greeting)), m_replies(std::move(replies)), m_ending(ending) {
    m_listen = bindLoopback(m_port);
    ::listen(m_listen, 1);
    m_thread = std::thread([this] { serve(); });
}

ScriptedServer::~ScriptedServer() {
    m_stop = true;
    m_thread.join();
    ::close(m_listen);
}

void ScriptedServer::serve() {
    // Every wait is a short poll so the destructor never waits long.
    auto ready = [this](int fd) {
        pollfd p{fd, POLLIN, 0};
        while (!m_stop)
            if (::poll(&p, 1, 50) > 0)
                return true;
        return false;
    };
    if (!ready(m_listen))
        return;
    const int fd = ::accept(m_listen, nullptr, nullptr);
    ::send(fd, m_greeting.constData(), size_t(m_greeting.size()), MSG_NOSIGNAL);
    QByteArray pending;
    qsizetype next = 0;
    while (next < m_replies.size() && ready(fd)) {
        char buf[4096];
        const ssize_t n = ::recv(fd, buf, sizeof buf, 0);
        if (n <= 0)
            break;
        pending.append(buf, qsizetype(n));
        qsizetype eol;
        while (next < m_replies.size() && (eol = pending.indexOf('\n')) >= 0) {
            m_received.append(pending.left(eol + 1));
            pending.remove(0, eol + 1);
            const QByteArray& r = m_replies[next++];
            ::send(fd, r.constData(), size_t(r.size()), MSG_NOSIGNAL);
        }
    }
    if (m_ending == Ending::Silence)
        while (!m_stop)
            ::usleep(20000);
    ::close(fd);
}

} // namespace mirel::test
