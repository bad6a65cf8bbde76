#include "platform/TransferDecoder.h"
#include "TestSupport.h"
#include "platform/BinHexDecoder.h"

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches a BinHex block read wrong: run-length codes and the escaped 0x90
// marker (the block in tests/data was written by an independent encoder, the
// corpus script, from exactly these bytes), a line end of any kind or text
// before the block, a CRC computed wrongly, a block cut short that loses what
// it holds, and text without a block not kept as it is.
TEST(BinHexDecoderTest, WholeDamagedAndMissingBlocks) {
    QByteArray data = QByteArray("Mac file \x90\x90 data") + QByteArray(40, '\0');
    for (int i = 0; i < 256; ++i)
        data.append(char(i));
    const QByteArray text = readAll(testData("mail/binhex/notes.hqx"));
    const BinHexDecoder::Result r = BinHexDecoder::decode(text);
    EXPECT_EQ(r.name, QByteArray("notes.txt"));
    EXPECT_EQ(r.data, data);
    EXPECT_EQ(r.resource, QByteArray("resource fork bytes"));
    EXPECT_TRUE(r.complete && r.crcOk);
    QByteArray crlf = text;
    crlf.replace("\n", "\r\n\r\n");
    EXPECT_EQ(TransferDecoder::decodeBinHex("preamble text\r\n" + crlf), data);

    const qsizetype colon = text.indexOf(':');
    const BinHexDecoder::Result cut = BinHexDecoder::decode(text.left(colon + 60));
    EXPECT_TRUE(cut.found && !cut.complete);
    EXPECT_TRUE(data.startsWith(cut.data) && !cut.data.isEmpty());
    QByteArray flipped = text;
    flipped[colon + 70] = flipped[colon + 70] == 'A' ? 'B' : 'A';
    EXPECT_FALSE(BinHexDecoder::decode(flipped).crcOk);
    for (const char* junk :
         {"", ":", "::", "(This file must be converted with BinHex 4.0)", ":!!!!!!!!:"})
        EXPECT_FALSE(BinHexDecoder::decode(junk).complete) << junk;
    EXPECT_EQ(TransferDecoder::decodeBinHex("no block here"), QByteArray("no block here"));
}

// Catches an encoding decoded by the wrong rule: blanks inside base64, soft
// line breaks, uuencode's line ends and short lines, unknown names kept.
TEST(TransferDecoderTest, DecodesTheFourEncodings) {
    const struct {
        const char* name;
        QByteArray raw;
        QByteArray decoded;
    } cases[] = {
        {"base64", "AAECAwQF\r\nBgcICQ==\r\n", QByteArray("\0\1\2\3\4\5\6\7\x08\x09", 10)},
        {"BASE64", "aGVs bG8=", "hello"}, // blanks inside are skipped
        {"quoted-printable", "caf=E9 =3D soft=\r\nbreak=\nx", "caf\xe9 = softbreakx"},
        {"x-uuencode", "begin 644 f\n#86)C\n`\nend\n", "abc"},
        {"x-uuencode", "begin 644 f\r\n#86)C\r\n`\r\nend\r\n", "abc"},
        {"x-uuencode", "no begin line\n#86)C\n", "no begin line\n#86)C\n"},
        {"x-uuencode", "begin 644 f\nM", QByteArray(45, '\0')}, // a short line counts as zeros
        {"7bit", "kept =E9 as it is", "kept =E9 as it is"},
        {"", "kept", "kept"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(TransferDecoder::decode(c.raw, TransferDecoder::fromName(c.name)), c.decoded)
            << c.name << " " << c.raw.constData();
}

} // namespace
