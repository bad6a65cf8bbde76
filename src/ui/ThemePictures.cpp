#include "ui/ThemePictures.h"

#include <QFile>
#include <QHash>
#include <sys/stat.h>

namespace mirel {
namespace {

struct Entry {
    qint64 modifiedNs = 0;
    qint64 size = 0;
    QPixmap picture;
};

// Several themes' worth of pictures; past this the cache starts afresh
// rather than keeping the pictures of themes used long ago.
constexpr qint64 kMaxBytes = 96 * 1024 * 1024;

struct Cache {
    QHash<QString, Entry> entries;
    qint64 bytes = 0;
};

Cache& cache() {
    static Cache c;
    return c;
}

qint64 bytesOf(const QPixmap& p) {
    return qint64(p.width()) * p.height() * qMax(1, p.depth() / 8);
}

} // namespace

QPixmap ThemePictures::get(const QString& path) {
    Cache& c = cache();
    // One plain stat per picture asked for: a screen asks for dozens, and a
    // file time made into a local date costs a time zone lookup each.
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0 || !S_ISREG(st.st_mode)) {
        if (const auto it = c.entries.constFind(path); it != c.entries.cend()) {
            c.bytes -= bytesOf(it->picture);
            c.entries.erase(it);
        }
        return {};
    }
    const qint64 modifiedNs = qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    const qint64 size = st.st_size;
    if (const auto it = c.entries.constFind(path);
        it != c.entries.cend() && it->modifiedNs == modifiedNs && it->size == size)
        return it->picture;

    const QPixmap picture(path);
    if (c.bytes + bytesOf(picture) > kMaxBytes) {
        c.entries.clear();
        c.bytes = 0;
    }
    Entry& e = c.entries[path];
    c.bytes += bytesOf(picture) - bytesOf(e.picture);
    e = Entry{modifiedNs, size, picture};
    return picture;
}

} // namespace mirel
