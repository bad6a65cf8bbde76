#include "app/ThemeSwitches.h"

#include "settings/IniHelpers.h"
#include "skin/AnimationSwitches.h"
#include "skin/ControlLine.h"

namespace mirel {

void ThemeSwitches::readAnimation(IniHelpers& ini, const QString& terminalSkn) {
    AnimationSwitches a{Animated, AnimDelay};
    a.read(ini, "DEFAULT", terminalSkn);
    Animated = a.animated;
    AnimDelay = a.delay;
}

void ThemeSwitches::read(IniHelpers& ini, const QString& terminalSkn) {
    readAnimation(ini, terminalSkn);
    if (ini.ReadIniKey("DEFAULT", "Debug", terminalSkn)) {
        if (const auto on = parseSkinBool(ini.IniValue))
            DebugOn = *on;
    }
}

} // namespace mirel
