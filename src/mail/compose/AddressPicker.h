#pragma once
// The rows the address picker offers and the recipient text it returns. It
// reads the address-book files directly and writes nothing; a file shorter
// than fifteen lines reads as if the missing lines were empty.
#include <QByteArray>
#include <QList>
#include <QString>

namespace mirel {

/// One pickable entry: `"Name" <address>`, sorted by name, address, file.
struct PickerRow {
    QByteArray text;
    /// The file's position in the folder listing.
    int filePosition = 0;
};

/// The address picker's rules, on files and texts.
class AddressPicker {
public:
    /// Every file of folder with a name (line 1) and an address (line 15).
    static QList<PickerRow> rows(const QString& folder);
    /// The selected rows, top to bottom, joined by ", ".
    static QByteArray result(const QList<QByteArray>& selected);
    /// What a recipient box holds after picking: old text, ", ", picked.
    static QByteArray appendTo(QByteArrayView box, QByteArrayView picked);
};

} // namespace mirel
