#pragma once
#include <QString>

namespace mirel::test {

/// A self-signed certificate for 127.0.0.1 and localhost, made with the
/// openssl tool in folder. A client that trusts certFile accepts the
/// server; one that trusts only the system's certificates must refuse it.
struct TestCertificate {
    QString certFile, keyFile;
    static TestCertificate make(const QString& folder);
};

} // namespace mirel::test
