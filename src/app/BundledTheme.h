#pragma once
// A first start has an empty theme folder. The theme that ships with the
// program is then copied there, so the user gets a working window and a theme
// of their own to edit. Existing files are never overwritten.
#include <QString>
#include <QStringList>

namespace mirel {

struct Folders;

/// Finding and installing the theme that ships with the program.
class BundledTheme {
  public:
    /// Where to look, best first: the installed share folder, the source
    /// tree next to a build folder, the source tree the program was built from.
    static QStringList candidates(const QString& applicationDir);
    /// The first candidate that holds "terminal.skn"; empty when none does.
    static QString locate(const QStringList& candidates);
    /// Copies source into the theme folder when that is the default one and
    /// has no "terminal.skn". True when a copy was made.
    static bool installIfMissing(const Folders& folders, const QString& source);
};

} // namespace mirel
