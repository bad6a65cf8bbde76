#include "mail/store/DuplicateDetector.h"

#include "platform/CaseFold.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>
#include <unistd.h>

namespace mirel {
namespace {

// "Message-ID: <" is thirteen characters; the ID starts after them.
constexpr qsizetype kIdStart = 13;
// Below this size the appended part is left alone however it compares.
constexpr qint64 kMinRewriteBytes = 64 * 1024;

const QByteArray kMesid = QByteArrayLiteral("MESID");
const QByteArray kMd5 = QByteArrayLiteral("MD5");

bool fitsIniKey(QByteArrayView key) {
    if (key.isEmpty() || key.startsWith('[') || key.startsWith(';'))
        return false;
    for (char c : key)
        if (c == '=' || c == '\r' || c == '\n' || c == '\0')
            return false;
    return true;
}

QByteArray sectionText(const QByteArray& section, const QList<DuplicateDetector::Key>& keys) {
    QByteArray out;
    for (const DuplicateDetector::Key& k : keys)
        if (k.section == section)
            out += k.name + "=1\r\n";
    return out.isEmpty() ? out : "[" + section + "]\r\n" + out;
}

} // namespace

DuplicateDetector::DuplicateDetector(QString recordFile) : m_file(std::move(recordFile)) {}

QByteArray DuplicateDetector::MD5Hex(QByteArrayView text) {
    return QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex();
}

QByteArray DuplicateDetector::messageIdKey(QByteArrayView line) {
    if (line.size() <= kIdStart + 1 ||
        line.first(11).compare("Message-ID:", Qt::CaseInsensitive) != 0)
        return {};
    // Names are trimmed when the file is read, so the ID is trimmed before
    // it is written: "< a@b>" is found again as "a@b".
    const QByteArrayView id = line.sliced(kIdStart).chopped(1).trimmed();
    if (fitsIniKey(id))
        return id.toByteArray();
    if (id.isEmpty())
        return {};
    return QCryptographicHash::hash(id, QCryptographicHash::Md5).toHex();
}

QList<DuplicateDetector::Key> DuplicateDetector::keysOf(const QList<QByteArray>& headerLines,
                                                        QByteArrayView body) {
    QList<Key> keys;
    for (const QByteArray& line : headerLines) {
        Key k{kMesid, messageIdKey(line)};
        if (!k.name.isEmpty() && !keys.contains(k))
            keys.append(std::move(k));
    }
    if (keys.isEmpty())
        keys.append({kMd5, MD5Hex(body)});
    return keys;
}

QSet<QByteArray>& DuplicateDetector::known(const QByteArray& section) {
    return section == kMd5 ? m_md5 : m_mesid;
}

void DuplicateDetector::load() {
    if (m_loaded)
        return;
    m_loaded = true;
    QFile f(m_file);
    if (!f.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = f.readAll();
    // Every section of a name counts, not only the first: flush() appends
    // repeated sections.
    const QByteArray* section = nullptr;
    QSet<QByteArray> seenSections;
    qsizetype pos = 0;
    while (pos < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', pos);
        if (end < 0)
            end = bytes.size();
        QByteArrayView line = QByteArrayView(bytes).sliced(pos, end - pos).trimmed();
        if (line.startsWith('[') && line.contains(']')) {
            const QByteArray name = toFolded(line.sliced(1, line.lastIndexOf(']') - 1).trimmed());
            section = name == "mesid" ? &kMesid : name == "md5" ? &kMd5 : nullptr;
            if (seenSections.contains(name) && m_appendedBytes == 0)
                m_appendedBytes = bytes.size() - pos;
            seenSections.insert(name);
        } else if (section && !line.startsWith(';') && line.contains('=')) {
            // A line cut off by a crash lacks its "=" and is skipped.
            const QByteArray name = line.first(line.indexOf('=')).trimmed().toByteArray();
            if (!name.isEmpty() && !known(*section).contains(toFolded(name))) {
                known(*section).insert(toFolded(name));
                m_entries.append({*section, name});
            }
        }
        pos = end + 1;
    }
    m_baseBytes = bytes.size() - m_appendedBytes;
}

bool DuplicateDetector::isKnown(const QList<Key>& keys) {
    load();
    for (const Key& k : keys)
        if (known(k.section).contains(toFolded(k.name)))
            return true;
    return false;
}

void DuplicateDetector::remember(const QList<Key>& keys) {
    load();
    for (const Key& k : keys)
        if (!known(k.section).contains(toFolded(k.name))) {
            known(k.section).insert(toFolded(k.name));
            m_pending.append(k);
        }
}

void DuplicateDetector::dropPending() {
    for (const Key& k : std::as_const(m_pending))
        known(k.section).remove(toFolded(k.name));
    m_pending.clear();
}

void DuplicateDetector::adoptStored(const QList<QByteArray>& headerBlocks) {
    for (const QByteArray& block : headerBlocks) {
        QList<QByteArray> lines = block.split('\n');
        for (QByteArray& line : lines)
            if (line.endsWith('\r'))
                line.chop(1);
        const QList<Key> keys = keysOf(lines, {});
        if (keys.first().section == kMesid && !isKnown(keys))
            remember(keys);
    }
    flush();
}

bool DuplicateDetector::flush() {
    if (m_pending.isEmpty())
        return true;
    const QByteArray text = sectionText(kMesid, m_pending) + sectionText(kMd5, m_pending);
    if (m_appendedBytes + text.size() > std::max(m_baseBytes, kMinRewriteBytes))
        return rewrite();
    QFile f(m_file);
    if (!f.open(QIODevice::ReadWrite | QIODevice::Append))
        return false;
    // A write a crash cut off leaves a line without its end.
    QByteArray out = text;
    if (f.size() > 0 && f.seek(f.size() - 1) && f.read(1) != "\n")
        out.prepend("\r\n");
    f.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    if (f.write(out) != out.size() || !f.flush() || ::fsync(f.handle()) != 0)
        return false;
    m_appendedBytes += out.size();
    m_entries.append(m_pending);
    m_pending.clear();
    return true;
}

bool DuplicateDetector::rewrite() {
    const QList<Key> all = m_entries + m_pending;
    const QByteArray text = sectionText(kMesid, all) + sectionText(kMd5, all);
    QSaveFile f(m_file);
    if (!f.open(QIODevice::WriteOnly) || f.write(text) != text.size() || !f.commit())
        return false;
    QFile::setPermissions(m_file, QFile::ReadOwner | QFile::WriteOwner);
    m_entries = all;
    m_pending.clear();
    m_baseBytes = text.size();
    m_appendedBytes = 0;
    return true;
}

} // namespace mirel
