#include "platform/IniFile.h"
#include "platform/PrivateFiles.h"

#include "platform/PathResolver.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QSaveFile>
#include <QThread>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <list>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirel {
namespace {

IniResult ioError(const QString& what, const QString& path, const QString& why) {
    return {IniResult::IoError, QStringLiteral("%1 \"%2\": %3").arg(what, path, why)};
}

constexpr int kLockWaitMs = 20000;

// The writers' lock: a kernel lock on "<file>.lock". The kernel drops it
// when its holder dies, so a killed writer never blocks the next one, and
// taking it writes nothing, so a write waits for the disk once (for the
// data), not twice. The holder removes the lock file; a waiter that got the
// lock on a file already removed tries again on the new one.
class WriterLock {
public:
    enum Status { Locked, Busy, Unwritable };
    explicit WriterLock(const QString& path) : m_path(QFile::encodeName(path + ".lock")) {}
    ~WriterLock() {
        if (m_fd < 0)
            return;
        ::unlink(m_path.constData());
        ::close(m_fd);
    }
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

    Status lock(int waitMs) {
        const QDeadlineTimer deadline(waitMs);
        for (;;) {
            const int fd = ::open(m_path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
            if (fd < 0)
                return Unwritable;
            if (::flock(fd, LOCK_EX | LOCK_NB) == 0) {
                struct stat held {
                }, named{};
                if (::fstat(fd, &held) == 0 && ::stat(m_path.constData(), &named) == 0 &&
                    held.st_dev == named.st_dev && held.st_ino == named.st_ino) {
                    m_fd = fd;
                    return Locked;
                }
                ::close(fd); // removed by the holder before us: lock the new file
                continue;
            }
            const bool busy = errno == EWOULDBLOCK;
            ::close(fd);
            if (!busy)
                return Unwritable;
            if (deadline.hasExpired())
                return Busy;
            QThread::msleep(2);
        }
    }

private:
    QByteArray m_path;
    int m_fd = -1;
};

// Opens a file for reading with the errors every reader reports.
IniResult openToRead(QFile& f, const QString& path, QIODevice::OpenMode extra = {}) {
    if (!f.open(QIODevice::ReadOnly | extra)) {
        if (!QFileInfo::exists(path))
            return {IniResult::Missing, {}};
        return ioError(QStringLiteral("Cannot read"), path, f.errorString());
    }
    if (QFileInfo(path).isDir())
        return ioError(QStringLiteral("Cannot read"), path, QStringLiteral("is a folder"));
    return {};
}

// Files read key by key ("incomming.ini" once per received message) keep
// their last content here. A file whose identity, size and times are those
// seen when it was read, and which had not been changed for a few seconds
// before that read, is taken as unchanged without reading it: any later
// write sets its change time past the recorded one, even on file systems
// that keep times to two seconds. Any other file is read on every lookup and
// compared with the kept bytes, so a change by another process or program is
// never missed; what an unchanged file saves is the search through it. The
// comparison goes through a small buffer, so an unchanged file costs no
// allocation of its size either. A content seen twice gets a hash index.
class ReadCache {
public:
    IniResult lookup(QFile& f, QByteArrayView section, QByteArrayView key,
                     std::optional<QByteArray>& value) {
        const QMutexLocker lock(&m_mutex);
        auto it = m_files.begin();
        while (it != m_files.end() && it->path != f.fileName())
            ++it;
        const Seen seen = Seen::of(f);
        if (it != m_files.end() && it->settled && seen.valid && seen == it->seen) {
            m_files.splice(m_files.begin(), m_files, it);
            value = it->doc.indexedValue(section, key);
            return {};
        }
        QByteArray bytes;
        const bool same = it != m_files.end() && readUnchanged(f, it->doc.bytes(), bytes);
        if (it == m_files.end())
            bytes = f.readAll();
        if (f.error() != QFileDevice::NoError)
            return ioError(QStringLiteral("Cannot read"), f.fileName(), f.errorString());
        if (same) {
            m_files.splice(m_files.begin(), m_files, it);
            it->seen = seen;
            it->settled = seen.settled();
            value = it->doc.indexedValue(section, key);
            return {};
        }
        if (it != m_files.end())
            m_files.erase(it);
        else if (m_files.size() >= kFiles)
            m_files.pop_back();
        // The first read of a content searches the bytes once, as cheap as
        // it gets for a file that is about to change again.
        value = IniDocument::lookup(bytes, section, key);
        m_files.push_front({f.fileName(), IniDocument(std::move(bytes)), seen, seen.settled()});
        return {};
    }

private:
    // True when the file holds exactly kept; otherwise bytes gets its content.
    static bool readUnchanged(QFile& f, const QByteArray& kept, QByteArray& bytes) {
        if (f.size() != kept.size()) {
            bytes = f.readAll();
            return false;
        }
        char buf[64 * 1024];
        qsizetype at = 0;
        for (;;) {
            const qint64 n = f.read(buf, sizeof buf);
            if (n <= 0)
                break;
            if (at + n > kept.size() || std::memcmp(buf, kept.constData() + at, size_t(n)) != 0) {
                bytes = kept.left(at);
                bytes.append(buf, n).append(f.readAll());
                return false;
            }
            at += n;
        }
        if (at == kept.size())
            return true;
        bytes = kept.left(at); // the file shrank while it was read
        return false;
    }

    // What the kernel says of an open file, taken before its bytes are read.
    struct Seen {
        bool valid = false;
        dev_t dev = 0;
        ino_t ino = 0;
        off_t size = 0;
        timespec mtime{}, ctime{};
        qint64 readAt = 0; // seconds, wall clock

        static Seen of(const QFile& f) {
            Seen s;
            struct stat st {};
            if (::fstat(f.handle(), &st) != 0)
                return s;
            s = {true, st.st_dev, st.st_ino, st.st_size, st.st_mtim, st.st_ctim, ::time(nullptr)};
            return s;
        }
        // Changed well before it was read: a later change cannot share its times.
        bool settled() const {
            constexpr qint64 kMarginSeconds = 3;
            return valid && mtime.tv_sec + kMarginSeconds < readAt &&
                   ctime.tv_sec + kMarginSeconds < readAt;
        }
        bool operator==(const Seen& o) const {
            return dev == o.dev && ino == o.ino && size == o.size &&
                   mtime.tv_sec == o.mtime.tv_sec && mtime.tv_nsec == o.mtime.tv_nsec &&
                   ctime.tv_sec == o.ctime.tv_sec && ctime.tv_nsec == o.ctime.tv_nsec;
        }
    };

    static constexpr size_t kFiles = 8;
    struct Entry {
        QString path;
        IniDocument doc;
        Seen seen;
        bool settled = false;
    };
    QMutex m_mutex;
    std::list<Entry> m_files; // most recently used first
};

ReadCache& readCache() {
    static ReadCache cache;
    return cache;
}

} // namespace

IniResult IniFile::load(const QString& rawPath, QByteArray& bytes) {
    bytes.clear();
    const QString path = resolvePath(rawPath);
    QFile f(path);
    if (IniResult r = openToRead(f, path); !r)
        return r;
    bytes = f.readAll();
    if (f.error() != QFileDevice::NoError)
        return ioError(QStringLiteral("Cannot read"), path, f.errorString());
    return {};
}

IniResult IniFile::read(const QString& rawPath, QByteArrayView section, QByteArrayView key,
                        QByteArray& value) {
    value.clear();
    const QString path = resolvePath(rawPath);
    QFile f(path);
    std::optional<QByteArray> v;
    if (IniResult r = openToRead(f, path, QIODevice::Unbuffered); !r)
        return r;
    if (IniResult r = readCache().lookup(f, section, key, v); !r)
        return r;
    if (!v)
        return {IniResult::Missing, {}};
    value = *v;
    return {};
}

IniResult IniFile::save(const QString& rawPath, const QByteArray& bytes) {
    const QString path = resolvePath(rawPath);
    const NewFileGuard fresh(path);
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return ioError(QStringLiteral("Cannot write"), path, f.errorString());
    if (f.write(bytes) != bytes.size()) {
        f.cancelWriting();
        return ioError(QStringLiteral("Cannot write"), path, f.errorString());
    }
    if (!f.commit())
        return ioError(QStringLiteral("Cannot write"), path, f.errorString());
    fresh.done();
    return {};
}

IniResult IniFile::modify(const QString& rawPath,
                          const std::function<IniResult(IniDocument&, bool)>& edit) {
    const QString path = resolvePath(rawPath);
    WriterLock lock(path);
    if (const WriterLock::Status st = lock.lock(kLockWaitMs); st != WriterLock::Locked)
        return ioError(QStringLiteral("Cannot lock"), path,
                       st == WriterLock::Busy ? QStringLiteral("another program holds the lock")
                                              : QStringLiteral("the folder is not writable"));
    QByteArray bytes;
    const IniResult loaded = load(path, bytes);
    if (loaded.status == IniResult::IoError)
        return loaded;
    IniDocument doc(std::move(bytes));
    const IniResult edited = edit(doc, loaded.status == IniResult::Ok);
    if (!edited)
        return edited;
    return save(path, doc.bytes());
}

IniResult IniFile::write(const QString& path, QByteArrayView section, QByteArrayView key,
                         QByteArrayView value) {
    if (!IniDocument::canWrite(section, key, value))
        return refused(path);
    return modify(path, [&](IniDocument& doc, bool) {
        doc.setValue(section, key, value);
        return IniResult{};
    });
}

IniResult IniFile::refused(const QString& path) {
    return ioError(QStringLiteral("Cannot write"), resolvePath(path),
                   QStringLiteral("the text holds a line break, a NUL or a bracket that would "
                                  "change the file's layout"));
}

IniResult IniFile::removeKey(const QString& path, QByteArrayView section, QByteArrayView key) {
    return modify(path, [&](IniDocument& doc, bool exists) {
        if (!exists || !doc.removeKey(section, key))
            return IniResult{IniResult::Missing, {}};
        return IniResult{};
    });
}

IniResult IniFile::removeSection(const QString& path, QByteArrayView section) {
    return modify(path, [&](IniDocument& doc, bool exists) {
        if (!exists || !doc.removeSection(section))
            return IniResult{IniResult::Missing, {}};
        return IniResult{};
    });
}

} // namespace mirel
