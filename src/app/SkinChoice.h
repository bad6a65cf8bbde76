#pragma once
#include <QString>

namespace mirel {

class IniHelpers;
struct Folders;

/// The screen skin's name: "Mirel" followed by the screen width when the
/// theme has such a skin with a "BackGround" in "DEFAULT", else the
/// resolution-independent "Mirel".
QString chooseSkinName(IniHelpers& ini, const Folders& folders, int screenWidth);

} // namespace mirel
