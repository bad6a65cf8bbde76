#include "skin/SkinLines.h"

#include "platform/PathResolver.h"
#include "settings/IniHelpers.h"

#include <QFileInfo>

namespace mirel {

QString SkinLines::overrideFileFor(const QString& skinFile) {
    return skinFile.left(qMax<qsizetype>(0, skinFile.size() - 3)) + QStringLiteral("ini");
}

QByteArray SkinLines::keyName(int keyNumber) {
    QByteArray key = QByteArray::number(keyNumber);
    return key.size() < 2 ? '0' + key : key;
}

std::optional<QByteArray> SkinLines::line(QByteArrayView section, int keyNumber,
                                          const QString& skinFile) const {
    const QByteArray key = keyName(keyNumber);
    if (m_ini.ReadIniKey(section, key, overrideFileFor(skinFile)))
        return m_ini.IniValue;
    if (m_ini.ReadIniKey(section, key, skinFile))
        return m_ini.IniValue;
    return std::nullopt;
}

QList<NumberedLine> SkinLines::read(QByteArrayView section, const QString& skinFile) const {
    QList<NumberedLine> out;
    const QString overrideFile = overrideFileFor(skinFile);
    // Most themes have no override file; asking it for every key would
    // double the reads of a screen for nothing.
    const bool hasOverride = QFileInfo::exists(resolvePath(overrideFile));
    // Keys are three digits at most in practice; the bound only guards
    // against a generated file with an endless run of numbers.
    for (int n = 1; n < 10000; ++n) {
        const QByteArray key = keyName(n);
        if (!m_ini.ReadIniKey(section, key, skinFile))
            break;
        QByteArray text = m_ini.IniValue;
        if (hasOverride && m_ini.ReadIniKey(section, key, overrideFile))
            text = m_ini.IniValue;
        out.append({n, text});
    }
    return out;
}

} // namespace mirel
