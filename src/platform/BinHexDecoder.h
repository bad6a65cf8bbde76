#pragma once
// BinHex 4.0 ("mac-binhex40"): a text block between two colons, after the
// line "(This file must be converted with BinHex 4.0)". Its characters carry
// six bits each; the bytes they make are run-length coded (0x90 marks a
// repeat), and hold a header (name, type, creator, flags, the two fork
// lengths, a CRC), the data fork with its CRC and the resource fork with
// its CRC. CRCs are CRC-16/XMODEM.
//
// Mail is what it is: truncated or damaged blocks still give every byte
// that could be recovered, and the result says what was wrong.
#include <QByteArray>

namespace mirel {

/// Decodes a BinHex 4.0 block; never fails, never reads past the input.
class BinHexDecoder {
  public:
    struct Result {
        QByteArray name;
        QByteArray data;       // the data fork: what a mail reader calls the file
        QByteArray resource;   // the resource fork
        bool found = false;    // a block start was there at all
        bool complete = false; // header and both forks were all there
        bool crcOk = false;    // and all three CRCs matched
    };

    static Result decode(QByteArrayView text);
    /// CRC-16/XMODEM (polynomial 0x1021, start 0), as BinHex uses it.
    static quint16 crc(QByteArrayView bytes, quint16 start = 0);
};

} // namespace mirel
