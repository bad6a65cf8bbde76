#pragma once
// Case-insensitive comparison of Windows-1252 byte strings, the way the
// system compares section names, key names, file names and sorted list entries.
#include <QByteArrayView>

namespace mirel {

/// Folds a cp1252 byte to its lower-case form (ASCII and the accented letters).
unsigned char foldCase(unsigned char c);
bool equalsNoCase(QByteArrayView a, QByteArrayView b);
/// <0, 0, >0 like strcmp, comparing folded bytes.
int compareNoCase(QByteArrayView a, QByteArrayView b);
/// The string with every byte folded: equal for names equal without regard to case.
QByteArray toFolded(QByteArrayView s);
/// Whether haystack holds needle, compared without regard to case.
bool containsNoCase(QByteArrayView haystack, QByteArrayView needle);

} // namespace mirel
