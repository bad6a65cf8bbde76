#include "platform/IniDocument.h"

#include "platform/CaseFold.h"

#include <QHash>
#include <QSet>

#include <cstring>

namespace mirel {
namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
// Trimming a value also drops a stray CR left by a CR CR LF ending.
bool isTrim(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

const QByteArray kCrLf("\r\n");

} // namespace

IniDocument::IniDocument(QByteArray bytes) : m_bytes(std::move(bytes)) {}

qsizetype IniDocument::firstLine(QByteArrayView b) {
    return b.size() >= 3 && std::memcmp(b.data(), "\xEF\xBB\xBF", 3) == 0 ? 3 : 0;
}

IniDocument::Line IniDocument::classify(const char* d, qsizetype pos, qsizetype n) {
    const void* nl = std::memchr(d + pos, '\n', size_t(n - pos));
    const qsizetype next = nl ? static_cast<const char*>(nl) - d + 1 : n;
    qsizetype end = nl ? next - 1 : n;
    if (end > pos && d[end - 1] == '\r')
        --end;
    Line l{pos, end, next, Kind::Blank, 0, 0, -1, -1};
    qsizetype s = pos;
    while (s < end && isBlank(d[s]))
        ++s;
    if (s == end)
        return l;
    if (d[s] == ';') {
        l.kind = Kind::Comment;
        return l;
    }
    const char* close = nullptr;
    if (d[s] == '[') {
        for (qsizetype i = end - 1; i > s; --i)
            if (d[i] == ']') {
                close = d + i;
                break;
            }
    }
    if (close) {
        l.kind = Kind::Section;
        l.nameBegin = s + 1;
        l.nameEnd = close - d;
    } else {
        l.kind = Kind::Key;
        const void* eq = std::memchr(d + s, '=', size_t(end - s));
        l.nameBegin = s;
        l.nameEnd = eq ? static_cast<const char*>(eq) - d : end;
        if (eq) {
            l.valueBegin = l.nameEnd + 1;
            l.valueEnd = end;
            while (l.valueBegin < l.valueEnd && isTrim(d[l.valueBegin]))
                ++l.valueBegin;
            while (l.valueEnd > l.valueBegin && isTrim(d[l.valueEnd - 1]))
                --l.valueEnd;
        }
    }
    while (l.nameBegin < l.nameEnd && isBlank(d[l.nameBegin]))
        ++l.nameBegin;
    while (l.nameEnd > l.nameBegin && isTrim(d[l.nameEnd - 1]))
        --l.nameEnd;
    return l;
}

QByteArray IniDocument::valueOf(QByteArrayView b, const Line& l) {
    return unquoted(b, l).toByteArray();
}

QByteArrayView IniDocument::unquoted(QByteArrayView b, const Line& l) {
    qsizetype from = l.valueBegin, to = l.valueEnd;
    if (to - from >= 2) {
        const char q = b[from];
        if ((q == '"' || q == '\'') && b[to - 1] == q) {
            ++from;
            --to;
        }
    }
    return b.sliced(from, to - from);
}

void IniDocument::forEachKey(QByteArrayView bytes, QByteArrayView section,
                             const std::function<void(QByteArrayView, const QByteArrayView*)>& f) {
    const char* d = bytes.data();
    const qsizetype n = bytes.size();
    bool inside = false;
    for (qsizetype pos = firstLine(bytes); pos < n;) {
        const Line l = classify(d, pos, n);
        pos = l.next;
        const QByteArrayView name(d + l.nameBegin, l.nameEnd - l.nameBegin);
        if (l.kind == Kind::Section) {
            if (inside)
                return; // only the first section of a name counts
            inside = equalsNoCase(name, section);
        } else if (inside && l.kind == Kind::Key) {
            const QByteArrayView value = l.valueBegin < 0 ? QByteArrayView() : unquoted(bytes, l);
            f(name, l.valueBegin < 0 ? nullptr : &value);
        }
    }
}

IniDocument::Located IniDocument::locate(QByteArrayView bytes, QByteArrayView section,
                                         QByteArrayView key, bool stopAtKey) {
    Located at;
    const char* d = bytes.data();
    const qsizetype n = bytes.size();
    qsizetype lastFilled = -1;
    const auto found = [&](qsizetype sectionEnd) {
        at.sectionEnd = sectionEnd;
        if (lastFilled >= 0)
            at.lastFilled = classify(d, lastFilled, n);
        return at;
    };
    // A line whose first byte is no blank, ";" or "[" is a key line whose
    // name starts right there; unless it starts with the name sought, only
    // its end matters. Adding a key to a section of 50,000 then costs a
    // short compare and a search for the line break per line.
    const auto mayBeSought = [&](qsizetype pos) {
        if (key.isEmpty())
            return d[pos] == '=';
        return n - pos >= key.size() && equalsNoCase(QByteArrayView(d + pos, key.size()), key);
    };
    for (qsizetype pos = firstLine(bytes); pos < n;) {
        const char c = d[pos];
        const bool plainKey = !isBlank(c) && c != ';' && c != '[' && c != '\r' && c != '\n';
        if (plainKey && (!at.header || !mayBeSought(pos))) {
            if (at.header)
                lastFilled = pos;
            const void* nl = std::memchr(d + pos, '\n', size_t(n - pos));
            pos = nl ? static_cast<const char*>(nl) - d + 1 : n;
            continue;
        }
        const Line l = classify(d, pos, n);
        pos = l.next;
        const QByteArrayView name(d + l.nameBegin, l.nameEnd - l.nameBegin);
        if (l.kind == Kind::Section) {
            if (at.header)
                return found(l.begin); // only the first section of a name counts
            if (equalsNoCase(name, section)) {
                at.header = l;
                lastFilled = l.begin;
            }
        } else if (at.header) {
            if (l.kind != Kind::Blank)
                lastFilled = l.begin;
            if (!at.key && l.kind == Kind::Key && equalsNoCase(name, key)) {
                at.key = l;
                if (stopAtKey)
                    return found(-1);
            }
        }
    }
    return found(n);
}

std::optional<QByteArray> IniDocument::lookup(QByteArrayView bytes, QByteArrayView section,
                                              QByteArrayView key) {
    const Located at = locate(bytes, section, key, true);
    if (!at.key || at.key->valueBegin < 0)
        return std::nullopt;
    return valueOf(bytes, *at.key);
}

void IniDocument::parse() const {
    m_dirty = false;
    m_indexed = false;
    m_index.clear();
    m_lines.clear();
    m_sections.clear();
    const char* d = m_bytes.constData();
    const qsizetype n = m_bytes.size();
    for (qsizetype pos = firstLine(m_bytes); pos < n;) {
        const Line l = classify(d, pos, n);
        if (l.kind == Kind::Section) {
            if (!m_sections.empty())
                m_sections.back().endLine = qsizetype(m_lines.size());
            m_sections.push_back({qsizetype(m_lines.size()), 0});
        }
        m_lines.push_back(l);
        pos = l.next;
    }
    if (!m_sections.empty())
        m_sections.back().endLine = qsizetype(m_lines.size());
}

QByteArrayView IniDocument::nameOf(const Line& l) const {
    return QByteArrayView(m_bytes.constData() + l.nameBegin, l.nameEnd - l.nameBegin);
}

const IniDocument::Section* IniDocument::findSection(QByteArrayView name) const {
    ensureParsed();
    for (const Section& s : m_sections)
        if (equalsNoCase(nameOf(m_lines[s.headerLine]), name))
            return &s;
    return nullptr;
}

const IniDocument::Line* IniDocument::findKey(const Section& s, QByteArrayView key) const {
    for (qsizetype i = s.headerLine + 1; i < s.endLine; ++i) {
        const Line& l = m_lines[i];
        if (l.kind == Kind::Key && equalsNoCase(nameOf(l), key))
            return &l;
    }
    return nullptr;
}

std::optional<QByteArray> IniDocument::value(QByteArrayView section, QByteArrayView key) const {
    const Section* s = findSection(section);
    if (!s)
        return std::nullopt;
    const Line* l = findKey(*s, key);
    if (!l || l->valueBegin < 0)
        return std::nullopt;
    return valueOf(m_bytes, *l);
}

bool IniDocument::hasSection(QByteArrayView section) const {
    return findSection(section);
}

QList<QByteArray> IniDocument::keyNames(QByteArrayView section) const {
    QList<QByteArray> out;
    if (const Section* s = findSection(section))
        for (qsizetype i = s->headerLine + 1; i < s->endLine; ++i)
            if (m_lines[i].kind == Kind::Key)
                out.append(nameOf(m_lines[i]).toByteArray());
    return out;
}

QHash<QByteArray, QByteArray> IniDocument::sectionValues(QByteArrayView section) const {
    QHash<QByteArray, QByteArray> out;
    QSet<QByteArray> seen; // a key line without "=" still hides later ones
    if (const Section* s = findSection(section))
        for (qsizetype i = s->headerLine + 1; i < s->endLine; ++i) {
            const Line& l = m_lines[i];
            if (l.kind != Kind::Key)
                continue;
            const QByteArray name = toFolded(nameOf(l));
            if (seen.contains(name))
                continue;
            seen.insert(name);
            if (l.valueBegin >= 0)
                out.insert(name, valueOf(m_bytes, l));
        }
    return out;
}

std::optional<QByteArray> IniDocument::indexedValue(QByteArrayView section,
                                                    QByteArrayView key) const {
    ensureParsed();
    if (!m_indexed) {
        m_indexed = true;
        for (const Section& s : m_sections) {
            const QByteArray name = toFolded(nameOf(m_lines[s.headerLine]));
            if (m_index.contains(name))
                continue; // a later section of the same name is never read
            QHash<QByteArray, qsizetype>& keys = m_index[name];
            keys.reserve(s.endLine - s.headerLine);
            for (qsizetype i = s.headerLine + 1; i < s.endLine; ++i)
                if (m_lines[i].kind == Kind::Key) {
                    QByteArray key = toFolded(nameOf(m_lines[i]));
                    if (!keys.contains(key)) // the first key of a name hides the rest
                        keys.insert(std::move(key), i);
                }
        }
    }
    const auto s = m_index.constFind(toFolded(section));
    if (s == m_index.constEnd())
        return std::nullopt;
    const auto k = s->constFind(toFolded(key));
    if (k == s->constEnd() || m_lines[*k].valueBegin < 0)
        return std::nullopt;
    return valueOf(m_bytes, m_lines[*k]);
}

QList<QByteArray> IniDocument::sectionNames() const {
    ensureParsed();
    QList<QByteArray> out;
    for (const Section& s : m_sections)
        out.append(nameOf(m_lines[s.headerLine]).toByteArray());
    return out;
}

void IniDocument::replaceRange(qsizetype from, qsizetype to, QByteArrayView with) {
    m_bytes.replace(from, to - from, with);
    m_dirty = true;
}

bool IniDocument::canWrite(QByteArrayView section, QByteArrayView key, QByteArrayView value) {
    const auto breaksLine = [](QByteArrayView t) {
        return t.contains('\r') || t.contains('\n') || t.contains('\0');
    };
    // A key line that starts like a header or a comment reads back as one.
    const QByteArrayView name = key.trimmed();
    const bool looksLikeOther = name.startsWith('[') || name.startsWith(';');
    return !breaksLine(section) && !breaksLine(key) && !breaksLine(value) &&
           !section.contains(']') && !key.contains('=') && !looksLikeOther;
}

bool IniDocument::setValue(QByteArrayView section, QByteArrayView key, QByteArrayView value) {
    return setValues(section, {{key.toByteArray(), value.toByteArray()}});
}

bool IniDocument::setValues(QByteArrayView section,
                            const QList<std::pair<QByteArray, QByteArray>>& entries) {
    for (const auto& [key, value] : entries)
        if (!canWrite(section, key, value))
            return false;
    // The last value given for a name wins, as if set one after another.
    QHash<QByteArray, qsizetype> pending; // folded name -> index into entries
    // Lengths of the names given: a line whose name has none of them is
    // copied without folding it, so adding one key to a large section costs
    // no allocation per line.
    std::vector<bool> pendingLength;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        pending.insert(toFolded(entries[i].first), i);
        const auto len = size_t(entries[i].first.size());
        if (pendingLength.size() <= len)
            pendingLength.resize(len + 1);
        pendingLength[len] = true;
    }
    auto entryLine = [&](qsizetype i, QByteArrayView name) {
        return name.toByteArray() + '=' + entries[i].second;
    };
    // Names still pending are added in the order of their first mention,
    // spelled as first given, with their last value.
    auto newLines = [&] {
        QByteArray out;
        for (const auto& [name, value] : entries) {
            const QByteArray folded = toFolded(name);
            const qsizetype last = pending.value(folded, -1);
            if (last >= 0) {
                out += entryLine(last, name) + kCrLf;
                pending.remove(folded);
            }
        }
        return out;
    };

    const bool single = entries.size() == 1;
    const Located at = locate(m_bytes, section, single ? entries[0].first : QByteArray(), single);
    if (single && at.header) {
        // One key: the pass that found the section also found the key or
        // the place after the section's last line, so nothing is read twice.
        if (at.key) {
            const QByteArrayView name(m_bytes.constData() + at.key->nameBegin,
                                      at.key->nameEnd - at.key->nameBegin);
            replaceRange(at.key->begin, at.key->end, entryLine(0, name));
        } else {
            const bool hasEol = at.lastFilled->next != at.lastFilled->end;
            replaceRange(at.lastFilled->next, at.lastFilled->next,
                         (hasEol ? QByteArray() : kCrLf) + newLines());
        }
        return true;
    }
    if (!at.header) {
        QByteArray add;
        if (!m_bytes.isEmpty() && !m_bytes.endsWith('\n'))
            add += kCrLf;
        add += '[' + section.toByteArray() + ']' + kCrLf;
        add += newLines();
        replaceRange(m_bytes.size(), m_bytes.size(), add);
        return true;
    }

    // Rebuild the section's lines: the first key of each name is replaced
    // in place (keeping its spelling and line end), every other line is
    // copied; names not found go after the last non-blank line.
    const char* d = m_bytes.constData();
    const qsizetype from = at.header->next, to = at.sectionEnd;
    QByteArray body;
    body.reserve(to - from + 64 * entries.size());
    qsizetype insertAt = 0; // offset in body after the last non-blank line
    bool lastHasEol = at.header->next != at.header->end;
    for (qsizetype pos = from; pos < to;) {
        const Line l = classify(d, pos, to);
        pos = l.next;
        const QByteArrayView name(d + l.nameBegin, l.nameEnd - l.nameBegin);
        const bool candidate = l.kind == Kind::Key && size_t(name.size()) < pendingLength.size() &&
                               pendingLength[size_t(name.size())];
        const QByteArray folded = candidate ? toFolded(name) : QByteArray();
        const qsizetype hit = candidate ? pending.value(folded, -1) : qsizetype(-1);
        if (hit >= 0) {
            pending.remove(folded);
            body += entryLine(hit, name);
            body += QByteArrayView(d + l.end, l.next - l.end);
        } else {
            body += QByteArrayView(d + l.begin, l.next - l.begin);
        }
        if (l.kind != Kind::Blank) {
            insertAt = body.size();
            lastHasEol = l.next != l.end;
        }
    }
    QByteArray add;
    if (!pending.isEmpty() && !lastHasEol)
        add += kCrLf;
    add += newLines();
    body.insert(insertAt, add);
    replaceRange(from, to, body);
    return true;
}

bool IniDocument::removeKey(QByteArrayView section, QByteArrayView key) {
    const Located at = locate(m_bytes, section, key, true);
    if (!at.header)
        return false;
    if (at.key)
        replaceRange(at.key->begin, at.key->next, {});
    return true;
}

bool IniDocument::removeSection(QByteArrayView section) {
    const Located at = locate(m_bytes, section, {}, false);
    if (!at.header)
        return false;
    replaceRange(at.header->begin, at.sectionEnd, {});
    return true;
}

} // namespace mirel
