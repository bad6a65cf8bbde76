#pragma once
// Delimited contact files, ours and those of other programs. They arrive as
// Windows-1252 with ";" (what the export writes) or as UTF-8, often with a
// byte-order mark, with "," and RFC 4180 quoting. Everything is turned into
// Windows-1252 first (characters outside it become "?"), then cut into the
// header and the data records.
//
// Values follow the simple rule of our own files: every double quote toggles
// "inside quotes", a separator outside quotes ends a value, and a value that
// begins and ends with a quote loses both. Two additions read the files of
// other programs right without changing how our own read:
//  - inside such a quoted value "" stands for one quote;
//  - a record whose quotes are still open at a line end, opened at the start
//    of a value, continues on the next line, provided the quote closes within
//    kMaxSpan lines. A quote that never closes is an ordinary character of
//    its own line, as it always was.
#include "organiser/AddressBook.h"

#include <QByteArray>
#include <QList>
#include <array>

namespace mirel {

/// For each exchange field (0..15 the address boxes, 16 the notes) the
/// 1-based file column it takes, 0 for none.
using ColumnAssignment = std::array<int, 17>;
/// Field names in exchange order, as the address screen captions them.
using FieldCaptions = std::array<QByteArray, 17>;

/// A contact file read for import: header, separator and data records.
struct AddressCsv {
    static constexpr int kMaxSpan = 200;               // lines one quoted value may span
    static constexpr qsizetype kMaxRecord = 1 << 20;   // longer records are refused
    static constexpr qsizetype kMaxFile = 256LL << 20; // larger files are not read

    QByteArray header;
    char separator = ',';
    /// Non-blank data records in file order; line breaks inside quoted
    /// values are kept as CR LF.
    QList<QByteArray> records;
    /// Records left out because they hold NUL bytes or exceed kMaxRecord.
    int refused = 0;

    static AddressCsv parse(const QByteArray& fileBytes);
    /// UTF-8 (with or without a byte-order mark) and UTF-16 with a mark
    /// become Windows-1252; anything else is taken as Windows-1252 already.
    static QByteArray toWindows1252(const QByteArray& bytes);
    static QList<QByteArray> values(QByteArrayView record, char separator);
    QList<QByteArray> columns() const { return values(header, separator); }
};

/// The dialog's answer as text: "k=c;" for k = 0..16.
QByteArray formatAssignment(const ColumnAssignment& a);
/// Field k+1's column is the number after the k-th "=" up to the next ";";
/// anything missing or not a number reads as 0.
ColumnAssignment parseAssignment(QByteArrayView text);

/// For each field the first column whose name matches its caption, ignoring
/// case, blanks and punctuation, or else a common name other address books
/// give that field; 0 when none matches.
ColumnAssignment preselectColumns(const QList<QByteArray>& columns, const FieldCaptions& captions);

/// The contact one record's values give; nullopt when all seventeen fields
/// are empty. Line breaks become blanks in the one-line fields and CR LF in
/// the notes.
std::optional<Contact> contactFromValues(const QList<QByteArray>& values,
                                         const ColumnAssignment& assignment);

} // namespace mirel
