#include "skin/SkinSound.h"

#include "platform/Cp1252.h"
#include "platform/PathResolver.h"
#include "settings/IniHelpers.h"
#include "skin/ControlLine.h"

#include <QFileInfo>

namespace mirel {

SoundSwitches SkinSound::readSwitches(IniHelpers& ini, const QString& terminalSkn) {
    SoundSwitches s;
    if (ini.ReadIniKey("DEFAULT", "Sound", terminalSkn))
        s.sound = parseSkinBool(ini.IniValue, true);
    if (ini.ReadIniKey("DEFAULT", "Multiple", terminalSkn))
        s.multiple = parseSkinBool(ini.IniValue, false);
    return s;
}

QString SkinSound::soundPath(QByteArrayView name, const QString& themeFolder) {
    const QString text = Cp1252::toUnicode(name);
    if (!name.contains(':'))
        return resolvePath(themeFolder + text + QStringLiteral(".wav"));
    // A path written for a drive ("C:\sounds\ding.wav") is read from the root.
    if (text.size() >= 2 && text[1] == QLatin1Char(':') && text[0].isLetter())
        return resolvePath(text.mid(2));
    return resolvePath(text);
}

std::optional<SoundRequest> SkinSound::plan(QByteArrayView name, bool wait,
                                            const SoundSwitches& switches,
                                            const QString& themeFolder) {
    if (!switches.sound || name.trimmed().isEmpty())
        return std::nullopt;
    const QString path = soundPath(name, themeFolder);
    const QFileInfo info(path);
    if (!info.isFile() || info.size() == 0)
        return std::nullopt;
    return SoundRequest{path, switches.multiple, wait};
}

} // namespace mirel
