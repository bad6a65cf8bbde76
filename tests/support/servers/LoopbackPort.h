#pragma once
// Ports on 127.0.0.1 for the servers the tests start.

namespace mirel::test {

/// A port nothing listens on right now (the system picks it).
int freeLoopbackPort();
/// True once something accepts connections on the port, false after timeoutMs.
bool waitForPort(int port, int timeoutMs = 10000);

} // namespace mirel::test
