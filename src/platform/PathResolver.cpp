#include "platform/PathResolver.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <dirent.h>
#include <memory>
#include <optional>

namespace mirel {
namespace {

// The one entry of dir spelled as part without regard to case. A theme
// folder holds hundreds of pictures and a missing file is looked for on
// every screen, so the folder is read as it comes, unsorted. Only when case
// twins match is the sorted listing asked for, so the same twin is chosen.
std::optional<QString> entryLike(const QString& dir, const QString& part) {
    const std::unique_ptr<DIR, int (*)(DIR*)> d(::opendir(QFile::encodeName(dir).constData()),
                                                ::closedir);
    if (!d)
        return std::nullopt;
    std::optional<QString> found;
    while (const dirent* e = ::readdir(d.get())) {
        const QString name = QFile::decodeName(e->d_name);
        if (name.compare(part, Qt::CaseInsensitive) != 0 || name == QLatin1String(".") ||
            name == QLatin1String(".."))
            continue;
        if (found) {
            found.reset();
            const QStringList entries = QDir(dir).entryList(QDir::AllEntries | QDir::Hidden |
                                                            QDir::System | QDir::NoDotAndDotDot);
            for (const QString& e : entries)
                if (e.compare(part, Qt::CaseInsensitive) == 0)
                    return e;
            return std::nullopt;
        }
        found = name;
    }
    return found;
}

} // namespace

QString resolvePath(const QString& path) {
    QString p = path;
    p.replace(QLatin1Char('\\'), QLatin1Char('/'));
    while (p.contains(QLatin1String("//")))
        p.replace(QLatin1String("//"), QLatin1String("/"));
    if (p.isEmpty() || QFileInfo::exists(p))
        return p; // the common case costs one stat

    const bool absolute = p.startsWith(QLatin1Char('/'));
    const QStringList parts = p.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    QString cur = absolute ? QStringLiteral("/") : QString();
    bool searching = true;
    for (const QString& part : parts) {
        QString chosen = part;
        if (searching && part != QLatin1String(".") && part != QLatin1String("..")) {
            const QString dir = cur.isEmpty() ? QStringLiteral(".") : cur;
            if (!QFileInfo::exists(dir + QLatin1Char('/') + part)) {
                const std::optional<QString> found = entryLike(dir, part);
                searching = found.has_value();
                if (found)
                    chosen = *found;
            }
        }
        if (!cur.isEmpty() && !cur.endsWith(QLatin1Char('/')))
            cur += QLatin1Char('/');
        cur += chosen;
    }
    if (p.endsWith(QLatin1Char('/')) && !cur.endsWith(QLatin1Char('/')))
        cur += QLatin1Char('/');
    return cur;
}

} // namespace mirel
