#include "organiser/TextFile.h"
#include "platform/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

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
    // Read straight from the directory: each name comes with its type, so
    // only links need a look at what they point to. Folders of a thousand
    // items are listed on every refresh.
    DIR* dir = ::opendir(QFile::encodeName(folder.isEmpty() ? QStringLiteral(".") : folder));
    if (!dir)
        return {};
    struct Named {
        QString key; // lower case: the order ignores case
        QString name;
    };
    std::vector<Named> files;
    while (const dirent* e = ::readdir(dir)) {
        if (e->d_name[0] == '.') // hidden, and the folder itself and its parent
            continue;
        bool regular = e->d_type == DT_REG;
        if (e->d_type == DT_LNK || e->d_type == DT_UNKNOWN) {
            struct stat st;
            regular = ::fstatat(::dirfd(dir), e->d_name, &st, 0) == 0 && S_ISREG(st.st_mode);
        }
        if (regular) {
            QString name = QFile::decodeName(e->d_name);
            files.push_back({name.toLower(), std::move(name)});
        }
    }
    ::closedir(dir);
    std::sort(files.begin(), files.end(), [](const Named& a, const Named& b) {
        return a.key != b.key ? a.key < b.key : a.name < b.name;
    });
    QStringList names;
    names.reserve(qsizetype(files.size()));
    for (Named& f : files)
        names.append(std::move(f.name));
    return names;
}

} // namespace mirel
