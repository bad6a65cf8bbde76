#pragma once
#include "skin/AnimationSwitches.h"

#include <QString>

namespace mirel {

class IniHelpers;

/// The theme-wide switches of the main window, from section "DEFAULT" of
/// "terminal.skn". Only keys that are present (and readable) change a value,
/// so reading twice keeps what the first read set when a key disappears.
struct ThemeSwitches {
    bool Animated = false;
    int AnimDelay = 0;
    bool DebugOn = false;

    static constexpr int kMaxAnimDelay = AnimationSwitches::kMaxDelay;

    /// Applies "Animated", "AnimDelay" and "Debug" from terminalSkn.
    void read(IniHelpers& ini, const QString& terminalSkn);
    /// Applies only "Animated" and "AnimDelay" (what shut-down re-reads).
    void readAnimation(IniHelpers& ini, const QString& terminalSkn);
};

} // namespace mirel
