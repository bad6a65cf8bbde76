#include "servers/DovecotServer.h"

#include "TestSupport.h"
#include "servers/LoopbackPort.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirel::test {
namespace {

void chownTree(const QString& path, unsigned uid, unsigned gid) {
    if (::geteuid() != 0)
        return;
    ::chown(QFile::encodeName(path).constData(), uid, gid);
    QDirIterator it(path, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        ::chown(QFile::encodeName(it.next()).constData(), uid, gid);
}

} // namespace

DovecotServer::DovecotServer() {
    // As root the mail files belong to "nobody", as dovecot will not serve root's.
    const passwd* owner = ::geteuid() == 0 ? ::getpwnam("nobody") : ::getpwuid(::getuid());
    m_mailUid = owner ? owner->pw_uid : 65534;
    m_mailGid = owner ? owner->pw_gid : 65534;
}

DovecotServer::~DovecotServer() {
    stop();
}

void DovecotServer::addUser(const QByteArray& name, const QByteArray& password) {
    m_passwd += name + ":{PLAIN}" + password + "::::::\n";
    for (const char* sub : {"/new", "/cur", "/tmp"})
        QDir().mkpath(maildir(name) + QLatin1String(sub));
    chownTree(m_dir.path() + QStringLiteral("/home"), m_mailUid, m_mailGid);
}

QString DovecotServer::maildir(const QByteArray& user) const {
    return m_dir.path() + QStringLiteral("/home/") + QString::fromUtf8(user) +
           QStringLiteral("/Maildir");
}

bool DovecotServer::start(std::optional<TestCertificate> tls) {
    const QString root = m_dir.path();
    // The login processes run as the mail user and must reach the sockets.
    ::chmod(QFile::encodeName(root).constData(), 0755);
    writeAll(root + QStringLiteral("/passwd"), m_passwd);
    m_port = freeLoopbackPort();
    const QByteArray loginUser =
        ::geteuid() == 0 ? QByteArray("nobody") : QByteArray(::getpwuid(::getuid())->pw_name);
    QByteArray conf = readAll(testData(QStringLiteral("servers/dovecot.conf")));
    conf.replace("@ROOT@", QFile::encodeName(root))
        .replace("@LOGIN@", loginUser)
        .replace("@PORT@", QByteArray::number(m_port))
        .replace("@UID@", QByteArray::number(m_mailUid))
        .replace("@GID@", QByteArray::number(m_mailGid));
    if (tls)
        conf += "ssl = yes\nssl_cert = <" + QFile::encodeName(tls->certFile) + "\nssl_key = <" +
                QFile::encodeName(tls->keyFile) + "\n";
    else
        conf += "ssl = no\n";
    writeAll(root + QStringLiteral("/dovecot.conf"), conf);
    // The auth process runs as the login user and reads the passwd file.
    chownTree(root + QStringLiteral("/passwd"), m_mailUid, m_mailGid);

    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(
        QStringLiteral("/usr/sbin/dovecot"),
        {QStringLiteral("-F"), QStringLiteral("-c"), root + QStringLiteral("/dovecot.conf")});
    if (!m_process.waitForStarted(10000))
        return false;
    return waitForPort(m_port);
}

void DovecotServer::stop() {
    stopProcess(m_process);
}

void DovecotServer::deliver(const QByteArray& user, const QByteArray& message) {
    // Written under tmp/ and moved into new/, as maildir delivery requires,
    // so the server never sees half a message.
    const QString name = QStringLiteral("%1.M%2P%3.test")
                             .arg(QDateTime::currentSecsSinceEpoch())
                             .arg(++m_delivered)
                             .arg(::getpid());
    const QString tmp = maildir(user) + QStringLiteral("/tmp/") + name;
    writeAll(tmp, message);
    chownTree(tmp, m_mailUid, m_mailGid);
    QFile::rename(tmp, maildir(user) + QStringLiteral("/new/") + name);
}

int DovecotServer::messagesOf(const QByteArray& user) const {
    return int(QDir(maildir(user) + QStringLiteral("/new")).entryList(QDir::Files).size() +
               QDir(maildir(user) + QStringLiteral("/cur")).entryList(QDir::Files).size());
}

QByteArray DovecotServer::log() const {
    return readAll(m_dir.path() + QStringLiteral("/dovecot.log"));
}

} // namespace mirel::test
