#include "platform/TransferDecoder.h"
#include "TestSupport.h"
#include "platform/BinHexDecoder.h"

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

QByteArray everyByte() {
    QByteArray b;
    for (int i = 0; i < 256; ++i)
        b.append(char(i));
    return b;
}

// The block in tests/data was written by an independent encoder (the
// corpus script) from exactly these bytes; it uses run-length coding and
// escapes the 0x90 marker.
QByteArray notesData() {
    return QByteArray("Mac file \x90\x90 data") + QByteArray(40, '\0') + everyByte();
}

TEST(BinHexDecoderTest, DecodesBothForksAndChecksTheirCrcs) {
    const QByteArray text = readAll(testData("mail/binhex/notes.hqx"));
    ASSERT_FALSE(text.isEmpty());
    const BinHexDecoder::Result r = BinHexDecoder::decode(text);
    EXPECT_EQ(r.name, QByteArray("notes.txt"));
    EXPECT_EQ(r.data, notesData());
    EXPECT_EQ(r.resource, QByteArray("resource fork bytes"));
    EXPECT_TRUE(r.complete);
    EXPECT_TRUE(r.crcOk);
    // Blank lines and line ends of any kind between the characters.
    QByteArray crlf = text;
    crlf.replace("\n", "\r\n\r\n");
    EXPECT_EQ(BinHexDecoder::decode("preamble text\r\n" + crlf).data, notesData());
}

TEST(BinHexDecoderTest, DamagedBlocksGiveWhatTheyHold) {
    const QByteArray text = readAll(testData("mail/binhex/notes.hqx"));
    const qsizetype colon = text.indexOf(':');

    const BinHexDecoder::Result cut = BinHexDecoder::decode(text.left(colon + 60));
    EXPECT_TRUE(cut.found);
    EXPECT_FALSE(cut.complete);
    EXPECT_EQ(cut.name, QByteArray("notes.txt"));
    EXPECT_TRUE(notesData().startsWith(cut.data));

    QByteArray flipped = text;
    flipped[colon + 70] = flipped[colon + 70] == 'A' ? 'B' : 'A';
    const BinHexDecoder::Result bad = BinHexDecoder::decode(flipped);
    EXPECT_TRUE(bad.complete);
    EXPECT_FALSE(bad.crcOk);

    for (const QByteArray& junk :
         {QByteArray(), QByteArray(":"), QByteArray("::"),
          QByteArray("(This file must be converted with BinHex 4.0)"), QByteArray(":!!!!!!!!:")}) {
        const BinHexDecoder::Result r = BinHexDecoder::decode(junk);
        EXPECT_FALSE(r.complete) << junk.constData();
    }
    // No block at all: the text is kept as it is.
    EXPECT_EQ(TransferDecoder::decodeBinHex("no block here"), QByteArray("no block here"));
}

TEST(BinHexDecoderTest, CrcIsXmodem) {
    EXPECT_EQ(BinHexDecoder::crc("123456789"), 0x31C3);
    EXPECT_EQ(BinHexDecoder::crc(""), 0);
}

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
