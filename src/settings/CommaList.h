#pragma once
// Skin values are lists of fields separated by single commas, with no quoting
// (a field cannot hold a comma). Numbers are read by the leading-number rule:
// leading blanks skipped, an optional sign, digits up to the first character
// that is not part of the number; an empty or non-numeric field is 0.
#include <QByteArray>
#include <QList>

namespace mirel {

QList<QByteArray> splitCommaList(QByteArrayView text);
/// The leading-number rule; a fraction is cut off, out-of-range values clamp
/// to the long range.
long leadingNumber(QByteArrayView field);

/// An R,G,B colour, each channel 0..255.
struct Rgb {
    int r = 0, g = 0, b = 0;
    bool operator==(const Rgb&) const = default;
};
/// Reads "R,G,B"; missing fields are 0 and channels clamp to 0..255.
Rgb parseRgb(QByteArrayView text);

} // namespace mirel
