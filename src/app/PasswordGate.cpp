#include "app/PasswordGate.h"

#include "skin/ControlLine.h"
#include "settings/CommaList.h"
#include "settings/IniHelpers.h"

namespace mirel {

QByteArray PasswordGate::keyName(int keyNumber) {
    return QByteArray::number(keyNumber).rightJustified(2, '0');
}

bool PasswordGate::lineIsProtected(QByteArrayView controlLine) {
    // kind, name, left, top, width, height, hover sound, click sound, flag.
    const QList<QByteArray> fields = splitCommaList(controlLine);
    if (fields.size() < 9)
        return false;
    return parseSkinBool(fields[8]).value_or(false);
}

bool PasswordGate::isProtected(IniHelpers& ini, QByteArrayView section, int keyNumber,
                               const QString& skinFile, const QString& overrideFile) {
    const QByteArray key = keyName(keyNumber);
    if (ini.ReadIniKey(section, key, overrideFile) || ini.ReadIniKey(section, key, skinFile))
        return lineIsProtected(ini.IniValue);
    return false;
}

} // namespace mirel
