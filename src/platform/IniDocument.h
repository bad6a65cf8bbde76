#pragma once
// The INI file model shared by every reader and writer of the system.
//
// Design note. The rules are those of the Windows profile-string functions,
// applied to raw bytes:
//  - lines end in LF or CR LF; a lone CR is part of the line;
//  - leading blanks (space, tab) of a line are skipped; a line starting with
//    ";" is a comment; a line starting with "[" that holds a "]" is a section
//    header whose name is the text up to the last "]", blanks trimmed; any
//    other non-blank line is a key line "name=value" (a header without "]"
//    is read as a key line too);
//  - names compare without regard to case (cp1252 letters);
//  - only the first section of a name is ever looked at, and in it the first
//    key of a name: later duplicates are inert;
//  - a value is trimmed of blanks; one pair of matching quotes around it is
//    removed; a key line without "=" has no value and reads as missing;
//  - a UTF-8 byte-order mark at the start of the file is skipped.
// Edits keep every line they do not touch byte for byte; the lines they
// write end in CR LF.
#include <QByteArray>
#include <QHash>
#include <QList>
#include <functional>
#include <optional>
#include <vector>

namespace mirel {

/// A parsed view of INI bytes with lookups and byte-preserving edits.
class IniDocument {
public:
    explicit IniDocument(QByteArray bytes = {});

    /// One lookup straight on the bytes, without building the line table:
    /// the same answer as IniDocument(bytes).value(section, key), faster
    /// for a single read of a large file.
    static std::optional<QByteArray> lookup(QByteArrayView bytes, QByteArrayView section,
                                            QByteArrayView key);

    const QByteArray& bytes() const { return m_bytes; }

    std::optional<QByteArray> value(QByteArrayView section, QByteArrayView key) const;
    bool hasSection(QByteArrayView section) const;
    /// Key names of the first section of that name, in file order.
    QList<QByteArray> keyNames(QByteArrayView section) const;
    QList<QByteArray> sectionNames() const;
    /// Every key of the first section of that name with its value, names
    /// folded to lower case, first key of a name wins: for reading a whole
    /// section without a lookup per key.
    QHash<QByteArray, QByteArray> sectionValues(QByteArrayView section) const;
    /// Calls f for every key line of the first section of that name, in file
    /// order, straight on the bytes: names trimmed, values as value() gives
    /// them, nullptr for a line without "=". Later lines of a name are
    /// passed too; ignoring them is the caller's part.
    static void
    forEachKey(QByteArrayView bytes, QByteArrayView section,
               const std::function<void(QByteArrayView name, const QByteArrayView* value)>& f);
    /// The same answer as value(), from a hash of every section and key built
    /// on the first call: for a document that answers many lookups.
    std::optional<QByteArray> indexedValue(QByteArrayView section, QByteArrayView key) const;

    /// False when writing the text would change the file's structure rather
    /// than one value: a line break or NUL anywhere, "]" in a section name,
    /// "=" in a key name or one starting with "[" or ";". Typed text reaches the
    /// writers, so one value must never turn into another key or section.
    static bool canWrite(QByteArrayView section, QByteArrayView key, QByteArrayView value);

    /// Replaces the first key of that name in place, or appends it at the end
    /// of its section, or appends the section at the end of the file. Writes
    /// nothing and returns false when canWrite refuses the text.
    bool setValue(QByteArrayView section, QByteArrayView key, QByteArrayView value);
    /// Many setValue calls on one section in one pass over the file; all or
    /// nothing.
    bool setValues(QByteArrayView section, const QList<std::pair<QByteArray, QByteArray>>& entries);
    /// Returns false when the section does not exist; a missing key is no error.
    bool removeKey(QByteArrayView section, QByteArrayView key);
    /// Removes the header and every line up to the next section header.
    bool removeSection(QByteArrayView section);

private:
    enum class Kind { Blank, Comment, Section, Key };
    struct Line {
        qsizetype begin; // first byte of the line
        qsizetype end;   // end of content, before CR LF / LF
        qsizetype next;  // first byte of the following line
        Kind kind;
        qsizetype nameBegin, nameEnd;
        qsizetype valueBegin, valueEnd; // valueBegin < 0: no "="
    };
    struct Section {
        qsizetype headerLine; // index into m_lines
        qsizetype endLine;    // one past its last line
    };

    // Where a section and a key of it stand, found in one pass over the bytes.
    struct Located {
        std::optional<Line> header;     // first section of the name
        std::optional<Line> key;        // first key of the name in it
        std::optional<Line> lastFilled; // last non-blank line of the section
        qsizetype sectionEnd = -1;      // first byte after the section
    };
    static Located locate(QByteArrayView bytes, QByteArrayView section, QByteArrayView key,
                          bool stopAtKey);
    static Line classify(const char* d, qsizetype pos, qsizetype n);
    static qsizetype firstLine(QByteArrayView bytes);
    static QByteArray valueOf(QByteArrayView bytes, const Line& l);
    static QByteArrayView unquoted(QByteArrayView bytes, const Line& l);
    void parse() const;
    void ensureParsed() const {
        if (m_dirty)
            parse();
    }
    QByteArrayView nameOf(const Line& l) const;
    const Section* findSection(QByteArrayView name) const;
    const Line* findKey(const Section& s, QByteArrayView key) const;
    void replaceRange(qsizetype from, qsizetype to, QByteArrayView with);

    QByteArray m_bytes;
    // The line table is rebuilt on the first query after an edit, so a
    // read-modify-write of a large file parses it once.
    mutable bool m_dirty = true;
    mutable std::vector<Line> m_lines;
    mutable std::vector<Section> m_sections;
    // Folded section name -> folded key name -> line, first of each name
    // only; empty until indexedValue needs it, dropped with the line table.
    mutable QHash<QByteArray, QHash<QByteArray, qsizetype>> m_index;
    mutable bool m_indexed = false;
};

} // namespace mirel
