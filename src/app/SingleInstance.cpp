#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>
#include <QTimer>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace mirel {
namespace {

const QByteArray kRaise = QByteArrayLiteral("raise");
const QByteArray kAnswer = QByteArrayLiteral("ok\n");
// Requests and answers are one short word; anything longer is not a peer.
constexpr qint64 kMaxLine = 64;
// A client that says nothing is dropped after this long, so a stuck or
// hostile one cannot pile up connections.
constexpr int kServeDeadlineMs = 3000;

// A folder only this user can enter: anyone else who could create the
// socket first could keep Mirel from starting or stall it.
bool isPrivateFolder(const QString& path) {
    struct stat st {};
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 && S_ISDIR(st.st_mode) &&
           st.st_uid == ::getuid() && (st.st_mode & 077) == 0;
}

} // namespace

QString SingleInstance::runtimeFolder() {
    QString base = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (base.isEmpty())
        return {};
    const QString folder = QDir(base).filePath(QStringLiteral("mirel"));
    const QByteArray path = QFile::encodeName(folder);
    if (::mkdir(path.constData(), 0700) != 0 && errno != EEXIST)
        return {};
    struct stat st {};
    if (::lstat(path.constData(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == ::getuid())
        ::chmod(path.constData(), 0700); // ours, left open by an older version
    return isPrivateFolder(folder) ? folder : QString();
}

QString SingleInstance::serverName(const QString& storeRoot) {
    const QString folder = runtimeFolder();
    if (folder.isEmpty())
        return {};
    const QByteArray digest =
        QCryptographicHash::hash(QDir::cleanPath(storeRoot).toUtf8(), QCryptographicHash::Sha1)
            .toHex()
            .left(12);
    return folder + QStringLiteral("/instance-") + QString::fromLatin1(digest);
}

SingleInstance::SingleInstance(QString name, QObject* parent)
    : QObject(parent), m_name(std::move(name)) {}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::ask(const QString& name, const QByteArray& request, int timeoutMs) {
    if (name.isEmpty())
        return false;
    // One deadline for the whole exchange: a peer that trickles bytes must
    // not keep the start waiting step after step.
    const QDeadlineTimer deadline(timeoutMs);
    QLocalSocket socket;
    socket.connectToServer(name);
    if (!socket.waitForConnected(int(deadline.remainingTime())))
        return false;
    socket.write(request + '\n');
    if (!socket.waitForBytesWritten(int(deadline.remainingTime())))
        return false;
    // A socket file left by a crashed run accepts nothing; only an answer
    // proves a live instance.
    QByteArray reply;
    while (!reply.contains('\n')) {
        if (deadline.hasExpired() || !socket.waitForReadyRead(int(deadline.remainingTime())))
            return false;
        reply += socket.read(kMaxLine);
        if (reply.size() > kMaxLine)
            return false;
    }
    return reply == kAnswer;
}

bool SingleInstance::claimOrRaiseOther() {
    if (m_name.isEmpty())
        return true; // no private folder for the socket: run without the rule
    QLockFile lock(m_name + QStringLiteral(".lock"));
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
        QTimer::singleShot(kServeDeadlineMs, socket, [socket] {
            socket->abort();
            socket->deleteLater();
        });
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->canReadLine()) {
                if (socket->bytesAvailable() > kMaxLine)
                    socket->abort();
                return;
            }
            const QByteArray line = socket->readLine(kMaxLine).trimmed();
            socket->write(kAnswer);
            socket->flush();
            if (line == kRaise)
                Q_EMIT raiseRequested();
        });
    }
}

} // namespace mirel
