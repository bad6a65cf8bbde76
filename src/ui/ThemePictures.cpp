#include "ui/ThemePictures.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHash>

namespace mirel {
namespace {

struct Entry {
    QDateTime modified;
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
    const QFileInfo info(path);
    if (!info.isFile()) {
        if (const auto it = c.entries.constFind(path); it != c.entries.cend()) {
            c.bytes -= bytesOf(it->picture);
            c.entries.erase(it);
        }
        return {};
    }
    const QDateTime modified = info.lastModified();
    const qint64 size = info.size();
    if (const auto it = c.entries.constFind(path);
        it != c.entries.cend() && it->modified == modified && it->size == size)
        return it->picture;

    const QPixmap picture(path);
    if (c.bytes + bytesOf(picture) > kMaxBytes) {
        c.entries.clear();
        c.bytes = 0;
    }
    Entry& e = c.entries[path];
    c.bytes += bytesOf(picture) - bytesOf(e.picture);
    e = Entry{modified, size, picture};
    return picture;
}

} // namespace mirel
