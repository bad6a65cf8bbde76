#pragma once
// Ports on 127.0.0.1 for the servers the tests start.
#include "platform/MailServer.h"

#include <QProcess>

namespace mirel::test {

/// A socket bound to a port on 127.0.0.1 that the system picks (0 if none).
int bindLoopback(int& port);
/// A port nothing listens on right now (the system picks it).
int freeLoopbackPort();
/// True once something accepts connections on the port, false after timeoutMs.
bool waitForPort(int port, int timeoutMs = 10000);
/// Ends a server the test started: by its PID, politely first.
void stopProcess(QProcess& process);
/// A server on 127.0.0.1 whose connect and stall limits are both timeoutSeconds,
/// allowed without TLS.
MailServer loopbackServer(int port, const QByteArray& user = {}, const QByteArray& password = {},
                          int timeoutSeconds = 5);

} // namespace mirel::test
