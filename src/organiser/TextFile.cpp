#include "organiser/TextFile.h"
#include "platform/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace mirel {
namespace {

QString describe(const QString& what, const QString& path, const QString& why) {
    return QStringLiteral("%1 \"%2\": %3").arg(what, QDir::toNativeSeparators(path), why);
}

void chopCr(QByteArray& line) {
    if (line.endsWith('\r'))
        line.chop(1);
}

} // namespace

std::optional<QList<QByteArray>> TextFile::readLines(const QString& path, QString* error) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        if (error)
            *error = describe(QStringLiteral("Cannot read"), path, f.errorString());
        return std::nullopt;
    }
    const QByteArray all = f.readAll();
    QList<QByteArray> lines = all.split('\n');
    // A final line end does not start another line.
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    for (QByteArray& l : lines)
        chopCr(l);
    return lines;
}

std::optional<QByteArray> TextFile::readFirstLine(const QString& path, QString* error) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        if (error)
            *error = describe(QStringLiteral("Cannot read"), path, f.errorString());
        return std::nullopt;
    }
    QByteArray line = f.readLine();
    if (line.endsWith('\n'))
        line.chop(1);
    chopCr(line);
    return line;
}

std::optional<QList<QByteArray>> TextFile::readHead(const QString& path, int count) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    QByteArray bytes;
    bool whole = false;
    char buf[4096];
    for (;;) {
        const ssize_t n = ::read(fd, buf, sizeof buf);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) { // a folder, or the disk failed
            ::close(fd);
            return std::nullopt;
        }
        if (n == 0) {
            whole = true;
            break;
        }
        bytes.append(buf, n);
        if (bytes.count('\n') >= count)
            break;
    }
    ::close(fd);
    QList<QByteArray> lines = bytes.split('\n');
    if (whole && !lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast(); // as readLines: a final line end starts no line
    if (lines.size() > count)
        lines.resize(count);
    for (QByteArray& l : lines)
        chopCr(l);
    return lines;
}

bool TextFile::write(const QString& path, const QByteArray& bytes, QString* error) {
    const NewFileGuard fresh(path);
    QSaveFile f(path);
    if (f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size() && f.commit()) {
        fresh.done();
        return true;
    }
    if (error)
        *error = describe(QStringLiteral("Cannot write"), path, f.errorString());
    return false;
}

QByteArray TextFile::joinLines(const QList<QByteArray>& lines) {
    QByteArray out;
    for (const QByteArray& l : lines)
        out += l + "\r\n";
    return out;
}

QStringList TextFile::listFolder(const QString& folder) {
    return QDir(folder).entryList(QDir::Files, QDir::Name | QDir::IgnoreCase);
}

} // namespace mirel
