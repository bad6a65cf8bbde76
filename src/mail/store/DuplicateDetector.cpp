#include "mail/store/DuplicateDetector.h"

#include "settings/IniHelpers.h"

#include <QCryptographicHash>

namespace mirel {
namespace {

constexpr qsizetype kDigestBytes = 14;
// "Message-ID: <" is thirteen characters; the ID starts after them.
constexpr qsizetype kIdStart = 13;

bool fitsIniKey(QByteArrayView key) {
    if (key.trimmed().isEmpty() || key.trimmed().startsWith('[') || key.trimmed().startsWith(';'))
        return false;
    for (char c : key)
        if (c == '=' || c == '\r' || c == '\n' || c == '\0')
            return false;
    return true;
}

} // namespace

DuplicateDetector::DuplicateDetector(IniHelpers& ini, QString recordFile)
    : m_ini(ini), m_file(std::move(recordFile)) {}

QByteArray DuplicateDetector::MD5Hex(QByteArrayView text) {
    QByteArray input = text.first(std::min(text.size(), kDigestBytes)).toByteArray();
    input.append(QByteArray(kDigestBytes - input.size(), '\0'));
    return QCryptographicHash::hash(input, QCryptographicHash::Md5).toHex();
}

QByteArray DuplicateDetector::messageIdKey(QByteArrayView line) {
    if (line.size() <= kIdStart + 1 ||
        line.first(11).toByteArray().toUpper() != QByteArrayLiteral("MESSAGE-ID:"))
        return {};
    const QByteArrayView id = line.sliced(kIdStart).chopped(1);
    if (fitsIniKey(id))
        return id.toByteArray();
    if (id.trimmed().isEmpty())
        return {};
    return QCryptographicHash::hash(id, QCryptographicHash::Md5).toHex();
}

bool DuplicateDetector::seenBefore(QByteArrayView section, const QByteArray& key) {
    if (m_ini.ReadIniKey(section, key, m_file))
        return true;
    m_ini.WriteIniKey(section, key, "1", m_file);
    return false;
}

bool DuplicateDetector::IsDuplicateMessage(const QList<QByteArray>& headerLines,
                                           QByteArrayView body) {
    bool hadId = false;
    // Every Message-ID line counts, not only the first: a message that
    // carries two is known by either.
    for (const QByteArray& line : headerLines) {
        const QByteArray key = messageIdKey(line);
        if (key.isEmpty())
            continue;
        if (seenBefore("MESID", key))
            return true;
        hadId = true;
    }
    if (hadId)
        return false;
    return seenBefore("MD5", MD5Hex(body));
}

} // namespace mirel
