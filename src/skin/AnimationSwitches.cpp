#include "skin/AnimationSwitches.h"

#include "settings/CommaList.h"
#include "settings/IniHelpers.h"
#include "skin/ControlLine.h"

#include <algorithm>

namespace mirel {

void AnimationSwitches::read(IniHelpers& ini, QByteArrayView section, const QString& file) {
    if (ini.ReadIniKey(section, "Animated", file))
        animated = parseSkinBool(ini.IniValue, animated);
    if (ini.ReadIniKey(section, "AnimDelay", file))
        delay = int(std::clamp<long>(leadingNumber(ini.IniValue), 0, kMaxDelay));
}

} // namespace mirel
