#include "app/SkinChoice.h"

#include "app/ShellValues.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"

namespace mirel {

QString chooseSkinName(IniHelpers& ini, const Folders& folders, int screenWidth) {
    const QString product = QString::fromLatin1(kProductWord);
    const QString sized = product + QString::number(screenWidth);
    if (ini.ReadIniKey("DEFAULT", "BackGround", folders.themeFile(sized + QStringLiteral(".skn"))))
        return sized;
    return product;
}

} // namespace mirel
