// Catches run-length codes expanded past the fork lengths a BinHex header
// declares: a megabyte of repeat codes once decoded to over a hundred
// megabytes, whether they followed the forks or ran out of the data fork.
#include "platform/BinHexDecoder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace mirel;

namespace {

QByteArray encode(const QByteArray& bytes) {
    static const char kDigits[] =
        "!\"#$%&'()*+,-012345689@ABCDEFGHIJKLMNPQRSTUVXYZ[`abcdefhijklmpqr";
    QByteArray text = "(This file must be converted with BinHex 4.0)\r\n:";
    for (qsizetype i = 0; i + 2 < bytes.size(); i += 3) {
        const quint32 v = quint32(uchar(bytes[i])) << 16 | quint32(uchar(bytes[i + 1])) << 8 |
                          uchar(bytes[i + 2]);
        for (int shift : {18, 12, 6, 0})
            text += kDigits[(v >> shift) & 63];
    }
    return text + ':';
}

long peakKilobytes() {
    rusage r{};
    getrusage(RUSAGE_SELF, &r);
    return r.ru_maxrss;
}

TEST(BinHexLength, RepeatCodesStopAtTheDeclaredForkLengths) {
    // Name "x", type and creator, flags, data fork 4 bytes, no resource fork, header CRC.
    const QByteArray header =
        "\x01x" + QByteArray("\0TEXTMIR2\0\0", 11) + QByteArray("\0\0\0\x04\0\0\0\0", 8) + "cc";
    const QByteArray floods = QByteArray("\x90\xff").repeated(1 << 19); // 128 MB if expanded
    const struct {
        QByteArray forks, data;
    } rows[] = {{"data" + QByteArray("cccc") + floods, "data"}, {"d" + floods, "dddd"}};
    for (const auto& row : rows) {
        const long before = peakKilobytes();
        const BinHexDecoder::Result r = BinHexDecoder::decode(encode(header + row.forks));
        EXPECT_EQ(r.name, "x");
        EXPECT_EQ(r.data, row.data);
        EXPECT_TRUE(r.resource.isEmpty());
        EXPECT_LT(peakKilobytes() - before, 32 * 1024) << "kilobytes more at the peak";
    }
}

} // namespace
