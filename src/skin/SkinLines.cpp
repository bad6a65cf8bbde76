#include "skin/SkinLines.h"

#include "platform/IniFile.h"
#include "platform/PathResolver.h"
#include "settings/IniHelpers.h"

#include <QFileInfo>
#include <QHash>

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

namespace {

// The keys of one section, read from the file in one go: a screen asks for
// every numbered line, and a lookup per key would open and search the file
// each time. nullopt when the file cannot be read, so the caller can take the
// key-by-key path that reports the error as any other read does.
std::optional<QHash<QByteArray, QByteArray>> sectionOf(const QString& file,
                                                       QByteArrayView section) {
    QByteArray bytes;
    const IniResult r = IniFile::load(file, bytes);
    if (r.status == IniResult::Missing)
        return QHash<QByteArray, QByteArray>{};
    if (!r)
        return std::nullopt;
    return IniDocument(std::move(bytes)).sectionValues(section);
}

// The value as ReadIniKey would give it.
std::optional<QByteArray> keyValue(const QHash<QByteArray, QByteArray>& keys,
                                   const QByteArray& key) {
    const auto it = keys.constFind(key);
    if (it == keys.cend())
        return std::nullopt;
    return IniHelpers::readableValue(*it);
}

} // namespace

QList<NumberedLine> SkinLines::read(QByteArrayView section, const QString& skinFile) const {
    const auto skin = sectionOf(skinFile, section);
    const auto over = sectionOf(overrideFileFor(skinFile), section);
    if (!skin || !over)
        return readKeyByKey(section, skinFile);
    QList<NumberedLine> out;
    out.reserve(skin->size());
    for (int n = 1; n < kMaxKey; ++n) {
        const QByteArray key = keyName(n);
        std::optional<QByteArray> text = keyValue(*skin, key);
        if (!text)
            break;
        if (std::optional<QByteArray> replaced = keyValue(*over, key))
            text = std::move(replaced);
        out.append({n, *text});
    }
    return out;
}

QList<NumberedLine> SkinLines::readKeyByKey(QByteArrayView section, const QString& skinFile) const {
    QList<NumberedLine> out;
    const QString overrideFile = overrideFileFor(skinFile);
    // Most themes have no override file; asking it for every key would
    // double the reads of a screen for nothing.
    const bool hasOverride = QFileInfo::exists(resolvePath(overrideFile));
    for (int n = 1; n < kMaxKey; ++n) {
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
