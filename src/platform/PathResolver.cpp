#include "platform/PathResolver.h"

#include <QDir>
#include <QFileInfo>

namespace mirel {

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
                searching = false;
                const QStringList entries =
                    QDir(dir).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                        QDir::NoDotAndDotDot);
                for (const QString& e : entries)
                    if (e.compare(part, Qt::CaseInsensitive) == 0) {
                        chosen = e;
                        searching = true;
                        break;
                    }
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
