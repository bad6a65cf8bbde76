#pragma once
#include <QByteArray>

namespace mirel {

/// Decoders for the transfer encodings mail arrives in: quoted-printable,
/// base64, x-uuencode and mac-binhex40. Each is lenient, as mail readers
/// must be: characters that do not belong are skipped, a truncated body
/// gives what it holds.
class TransferDecoder {
  public:
    enum class Encoding { None, QuotedPrintable, Base64, Uuencode, BinHex };

    /// The encoding a Content-Transfer-Encoding value names (any letter
    /// case); None for 7bit, 8bit, binary and anything unknown.
    static Encoding fromName(QByteArrayView name);
    static QByteArray decode(QByteArrayView raw, Encoding encoding);

    static QByteArray decodeQuotedPrintable(QByteArrayView raw);
    static QByteArray decodeBase64(QByteArrayView raw);
    /// The lines between "begin MODE NAME" and "end"; without a begin line
    /// there is nothing to decode and the text comes back as it is.
    static QByteArray decodeUuencode(QByteArrayView raw);
    /// The data fork of a BinHex block; the text as it is when there is no
    /// block.
    static QByteArray decodeBinHex(QByteArrayView raw);
};

} // namespace mirel
