#include "platform/TransferDecoder.h"
#include "MailStoreFixture.h"
#include "platform/BinHexDecoder.h"

#include <QJsonArray>
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
    for (const QJsonValue r : jsonTestData("mail/mime-rules.json")["transfer"].toArray()) {
        const QByteArray name = r[0].toString().toLatin1(), raw = r[1].toString().toLatin1();
        EXPECT_EQ(TransferDecoder::decode(raw, TransferDecoder::fromName(name)),
                  r[2].toString().toLatin1())
            << name.constData() << " " << raw.constData();
    }
}

} // namespace
