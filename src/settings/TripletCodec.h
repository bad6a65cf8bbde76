#pragma once
// The decimal-triplet encoding keeps any text on one line of an INI or text
// file: each byte becomes its code as exactly three decimal digits
// ("A" -> "065", CR -> "013"); the empty text encodes to the empty text.
//
// Decoding reads three characters at a time from the start and takes each
// group by the leading-number rule (a group that is not a number is 0).
// A trailing group of one or two characters is decoded the same way ("65"
// at the end gives "A"), so text cut short loses nothing it still holds.
// A group above 255 ("999") has no character and decodes to "?".
#include <QByteArray>

namespace mirel {

QByteArray encodeTriplets(QByteArrayView text);
QByteArray decodeTriplets(QByteArrayView digits);

} // namespace mirel
