// Catches run-length codes expanded past the fork lengths a BinHex header
// declares: a megabyte of repeat codes once decoded to over a hundred
// megabytes.
#include "platform/BinHexDecoder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace mirel;

TEST(BinHexLength, RepeatCodesStopAtTheDeclaredForkLengths) {
    // Name "x", type and creator, flags, a data fork of 4 bytes, no resource
    // fork, then a flood of repeats: 128 MB if expanded.
    const QByteArray bytes = "\x01x" + QByteArray("\0TEXTMIR2\0\0\0\0\0\x04\0\0\0\0", 19) + "ccd" +
                             QByteArray("\x90\xff").repeated(1 << 19);
    static const char kDigits[] =
        "!\"#$%&'()*+,-012345689@ABCDEFGHIJKLMNPQRSTUVXYZ[`abcdefhijklmpqr";
    QByteArray text = "(This file must be converted with BinHex 4.0)\r\n:";
    for (qsizetype i = 0; i + 2 < bytes.size(); i += 3) {
        const quint32 v = quint32(uchar(bytes[i])) << 16 | quint32(uchar(bytes[i + 1])) << 8 |
                          uchar(bytes[i + 2]);
        for (int shift : {18, 12, 6, 0})
            text += kDigits[(v >> shift) & 63];
    }
    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    const BinHexDecoder::Result r = BinHexDecoder::decode(text + ':');
    getrusage(RUSAGE_SELF, &after);
    EXPECT_EQ(r.data, "dddd");
    EXPECT_TRUE(r.resource.isEmpty());
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 32 * 1024) << "kilobytes more at the peak";
}
