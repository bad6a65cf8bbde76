#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>

#include <unistd.h>

namespace mirel {
namespace {

const QByteArray kRaise = QByteArrayLiteral("raise");
const QByteArray kAnswer = QByteArrayLiteral("ok\n");

} // namespace

QString SingleInstance::serverName(const QString& storeRoot) {
    const QByteArray digest =
        QCryptographicHash::hash(QDir::cleanPath(storeRoot).toUtf8(), QCryptographicHash::Sha1)
            .toHex()
            .left(12);
    return QStringLiteral("mirel-%1-%2").arg(::getuid()).arg(QString::fromLatin1(digest));
}

SingleInstance::SingleInstance(QString name, QObject* parent)
    : QObject(parent), m_name(std::move(name)) {}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::ask(const QString& name, const QByteArray& request, int timeoutMs) {
    QLocalSocket socket;
    socket.connectToServer(name);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    socket.write(request + '\n');
    if (!socket.waitForBytesWritten(timeoutMs))
        return false;
    // A socket file left by a crashed run accepts nothing; only an answer
    // proves a live instance.
    QByteArray reply;
    while (!reply.contains('\n')) {
        if (!socket.waitForReadyRead(timeoutMs))
            return false;
        reply += socket.readAll();
    }
    return reply.startsWith(kAnswer.trimmed());
}

bool SingleInstance::claimOrRaiseOther() {
    QLockFile lock(QDir::tempPath() + QLatin1Char('/') + m_name + QStringLiteral(".lock"));
    lock.setStaleLockTime(10000);
    // A lock still held after five seconds belongs to a start that hangs;
    // going on without it is better than never starting.
    lock.tryLock(5000);
    if (ask(m_name, kRaise))
        return false;
    QLocalServer::removeServer(m_name);
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(m_name))
        return true; // run anyway: a window without the rule beats no window
    connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::serve);
    return true;
}

void SingleInstance::serve() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->canReadLine())
                return;
            const QByteArray line = socket->readLine(64).trimmed();
            socket->write(kAnswer);
            socket->flush();
            if (line == kRaise)
                Q_EMIT raiseRequested();
        });
    }
}

} // namespace mirel
