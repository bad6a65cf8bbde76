#include "servers/LoopbackPort.h"

#include <QElapsedTimer>
#include <QThread>
#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace mirel::test {
namespace {

sockaddr_in loopback(int port) {
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_port = htons(uint16_t(port));
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return a;
}

} // namespace

int bindLoopback(int& port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a = loopback(0);
    socklen_t len = sizeof a;
    port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len) == 0)
        port = ntohs(a.sin_port);
    return fd;
}

int freeLoopbackPort() {
    int port = 0;
    ::close(bindLoopback(port));
    return port;
}

bool waitForPort(int port, int timeoutMs) {
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < timeoutMs) {
        const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in a = loopback(port);
        const bool up = ::connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
        ::close(fd);
        if (up)
            return true;
        QThread::msleep(50);
    }
    return false;
}

void stopProcess(QProcess& process) {
    if (process.state() == QProcess::NotRunning)
        return;
    ::kill(pid_t(process.processId()), SIGTERM);
    if (!process.waitForFinished(10000)) {
        ::kill(pid_t(process.processId()), SIGKILL);
        process.waitForFinished(5000);
    }
}

MailServer loopbackServer(int port, const QByteArray& user, const QByteArray& password,
                          int timeoutSeconds) {
    MailServer s;
    s.host = "127.0.0.1";
    s.port = port;
    s.userName = user;
    s.password = password;
    s.connectTimeoutSeconds = timeoutSeconds;
    s.stallTimeoutSeconds = timeoutSeconds;
    // Most protocol tests talk to servers in the clear; the TLS tests clear this.
    s.plaintextAllowed = true;
    return s;
}

} // namespace mirel::test
