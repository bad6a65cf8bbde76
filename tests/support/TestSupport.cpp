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

static QByteArray unescape(const QByteArray& in) {
    static const QByteArray named = "rnt0", bytes("\r\n\t\0", 4);
    QByteArray out;
    for (qsizetype i = 0; i < in.size(); ++i) {
        const char c = in[i] == '\\' && i + 1 < in.size() ? in[++i] : 0;
        if (c == 'x')
            out += char(in.mid(i + 1, 2).toInt(nullptr, 16)), i += 2;
        else if (c)
            out += named.contains(c) ? bytes[named.indexOf(c)] : c;
        else
            out += in[i];
    }
    return out;
}

QList<QList<QByteArray>> readTable(const QString& relative) {
    QList<QList<QByteArray>> rows;
    const QByteArray text = readAll(testData(relative));
    EXPECT_FALSE(text.isEmpty()) << relative.toStdString();
    for (const QByteArray& line : text.split('\n')) {
        if (line.trimmed().isEmpty() || line.startsWith('#'))
            continue;
        QList<QByteArray> fields;
        for (qsizetype from = 0;;) {
            const qsizetype at = line.indexOf(" | ", from);
            fields.append(unescape(line.mid(from, at < 0 ? -1 : at - from)));
            if (at < 0)
                break;
            from = at + 3;
        }
        rows.append(fields);
    }
    return rows;
}

void ensureCoreApp() {
    static int argc = 1;
    static char name[] = "tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QCoreApplication(argc, argv);
}

} // namespace mirel::test
