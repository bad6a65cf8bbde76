#include "app/BundledTheme.h"
#include "BuildPaths.h"

#include "platform/PathResolver.h"
#include "settings/Folders.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace mirel {
namespace {

bool hasTerminalSkn(const QString& dir) {
    return QFileInfo(resolvePath(dir + QStringLiteral("/terminal.skn"))).isFile();
}

} // namespace

QStringList BundledTheme::candidates(const QString& applicationDir) {
    return {
        applicationDir + QStringLiteral("/../share/mirel/themes/Default"),
        applicationDir + QStringLiteral("/../themes/Default"),
        QStringLiteral(MIREL_SOURCE_DIR "/themes/Default"),
    };
}

QString BundledTheme::locate(const QStringList& candidates) {
    for (const QString& dir : candidates) {
        if (hasTerminalSkn(dir))
            return QDir::cleanPath(dir);
    }
    return {};
}

bool BundledTheme::installIfMissing(const Folders& folders, const QString& source) {
    // A theme folder the user named is theirs, even when empty or the data
    // root itself: only the default one is ever filled.
    if (folders.ThemeDir.compare(Folders::kDefaultThemeDir, Qt::CaseInsensitive) != 0)
        return false;
    if (QFileInfo(folders.themeFile(QStringLiteral("terminal.skn"))).isFile())
        return false;
    if (source.isEmpty())
        return false;
    const QString target = resolvePath(folders.themeFolder());
    if (!QDir().mkpath(target))
        return false;
    const QDir from(source);
    bool copied = false;
    QDirIterator it(source, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString dest = target + QLatin1Char('/') + from.relativeFilePath(file);
        if (QFileInfo::exists(dest))
            continue;
        QDir().mkpath(QFileInfo(dest).absolutePath());
        copied = QFile::copy(file, dest) || copied;
    }
    // The theme's preview picture sits beside its folder, named after it.
    const QString preview = QDir::cleanPath(source) + QStringLiteral(".bmp");
    const QString previewDest = QDir::cleanPath(target) + QStringLiteral(".bmp");
    if (QFileInfo::exists(preview) && !QFileInfo::exists(previewDest))
        QFile::copy(preview, previewDest);
    return copied;
}

} // namespace mirel
