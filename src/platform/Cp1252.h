#pragma once
// The one codec pair between the core's Windows-1252 bytes and the widgets'
// Unicode text. Data stays cp1252 in files and in the core; only the boundary
// to Qt text converts.
#include <QByteArray>
#include <QString>

namespace mirel {

/// Windows-1252 <-> Unicode; every byte decodes (the five unassigned bytes map
/// to the C1 controls of the same value, as Windows does), and a character
/// outside the code page encodes as "?".
class Cp1252 {
public:
    static QString toUnicode(QByteArrayView bytes);
    static QByteArray fromUnicode(QStringView text);
    /// The code page's character for one byte.
    static char16_t charFor(unsigned char byte);
};

} // namespace mirel
