#include "settings/Folders.h"
#include "platform/PrivateFiles.h"

#include "platform/IniFile.h"
#include "platform/PathResolver.h"

#include <QDir>

namespace mirel {
namespace {

QString withoutTrailingSeparator(QString dir) {
    while (dir.size() > 1 && (dir.endsWith(QLatin1Char('/')) || dir.endsWith(QLatin1Char('\\'))))
        dir.chop(1);
    return dir;
}

} // namespace

Folders Folders::fromStore(const SettingsStore& store) {
    Folders f;
    const QString file = store.fileFor(kFamilyApp);
    QByteArray value;
    if (IniFile::read(file, "Default", "ProgramDir", value) && !value.isEmpty()) {
        f.ProgramDir = withoutTrailingSeparator(resolvePath(QString::fromUtf8(value)));
    } else {
        QString data = qEnvironmentVariable("XDG_DATA_HOME");
        if (data.isEmpty())
            data = QDir::homePath() + QStringLiteral("/.local/share");
        f.ProgramDir = data + QStringLiteral("/mirel");
        makePrivateFolder(f.ProgramDir);
    }
    // A present but empty ThemeDir puts the theme files straight into
    // ProgramDir; only a missing key means the bundled theme's folder.
    if (IniFile::read(file, "Default", "ThemeDir", value))
        f.ThemeDir = QString::fromUtf8(value);
    else
        f.ThemeDir = kDefaultThemeDir;
    return f;
}

QString Folders::path(const QString& literal) const { return resolvePath(ProgramDir + literal); }

QString Folders::themeFile(const QString& name) const { return resolvePath(themeFolder() + name); }

} // namespace mirel
