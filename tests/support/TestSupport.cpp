#include "BuildPaths.h"
#include "TestSupport.h"

#include <QCoreApplication>
#include <QFile>
#include <gtest/gtest.h>

namespace mirel::test {

QByteArray readAll(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return f.readAll();
}

void writeAll(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        ADD_FAILURE() << "cannot write " << path.toStdString();
    f.write(bytes);
}

TempDir::TempDir() {
    EXPECT_TRUE(m_dir.isValid());
}

QProcess* startHelper(const QStringList& args) {
    auto* p = new QProcess;
    p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    p->start(QStringLiteral(MIREL_HELPER_BIN), args);
    EXPECT_TRUE(p->waitForStarted(10000));
    return p;
}

int runHelper(const QStringList& args, QByteArray* output) {
    QProcess* p = startHelper(args);
    EXPECT_TRUE(p->waitForFinished(120000));
    if (output)
        *output = p->readAllStandardOutput();
    const int code = p->exitStatus() == QProcess::NormalExit ? p->exitCode() : -1;
    delete p;
    return code;
}

QString testData(const QString& relative) {
    return QStringLiteral(MIREL_TEST_DATA) + QLatin1Char('/') + relative;
}

void ensureCoreApp() {
    static int argc = 1;
    static char name[] = "tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QCoreApplication(argc, argv);
}

} // namespace mirel::test
