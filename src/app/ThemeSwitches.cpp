#include "app/ThemeSwitches.h"

#include "skin/ControlLine.h"
#include "settings/CommaList.h"
#include "settings/IniHelpers.h"

#include <algorithm>

namespace mirel {

void ThemeSwitches::readAnimation(IniHelpers& ini, const QString& terminalSkn) {
    if (ini.ReadIniKey("DEFAULT", "Animated", terminalSkn)) {
        if (const auto on = parseSkinBool(ini.IniValue))
            Animated = *on;
    }
    if (ini.ReadIniKey("DEFAULT", "AnimDelay", terminalSkn))
        AnimDelay = int(std::clamp<long>(leadingNumber(ini.IniValue), 0, kMaxAnimDelay));
}

void ThemeSwitches::read(IniHelpers& ini, const QString& terminalSkn) {
    readAnimation(ini, terminalSkn);
    if (ini.ReadIniKey("DEFAULT", "Debug", terminalSkn)) {
        if (const auto on = parseSkinBool(ini.IniValue))
            DebugOn = *on;
    }
}

} // namespace mirel
