#pragma once
// Where the program's files are. ProgramDir is the program folder and the
// data root, without a trailing separator; every other path is ProgramDir
// followed by a literal that begins with a backslash ("\Mirel\Notes"), and
// the theme folder is ProgramDir followed directly by ThemeDir. Literals are
// joined by plain concatenation, exactly as written, and then resolved
// against the disk without regard to case (resolvePath).
#include "platform/SettingsStore.h"

#include <QString>

namespace mirel {

/// ProgramDir, ThemeDir and SkinName, set once at start.
struct Folders {
    QString ProgramDir;
    QString ThemeDir;
    QString SkinName = QStringLiteral("Mirel");

    /// ThemeDir when the shared store has no "ThemeDir" key at all.
    static inline const QString kDefaultThemeDir = QStringLiteral("\\themes\\Default\\");

    /// Reads "Default"/"ProgramDir" and "Default"/"ThemeDir" from the store.
    /// Without a ProgramDir the program folder is $XDG_DATA_HOME/mirel
    /// (default ~/.local/share/mirel), created here on first use.
    static Folders fromStore(const SettingsStore& store);

    /// ProgramDir + literal, resolved.
    QString path(const QString& literal) const;
    /// ProgramDir + ThemeDir, unresolved (theme file names append to it).
    QString themeFolder() const { return ProgramDir + ThemeDir; }
    /// Theme folder + file name, resolved.
    QString themeFile(const QString& name) const;
    /// The screen skin "<SkinName>.skn" and its override "<SkinName>.ini".
    QString skinFile() const { return themeFile(SkinName + QStringLiteral(".skn")); }
    QString skinOverrideFile() const { return themeFile(SkinName + QStringLiteral(".ini")); }
};

} // namespace mirel
