#include "platform/Cp1252.h"

#include <array>

namespace mirel {
namespace {

// 0x80..0x9F: the only range where cp1252 differs from Latin-1.
constexpr std::array<char16_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char encodeOne(char16_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return char(c);
    for (int i = 0; i < 32; ++i)
        if (kHigh[i] == c)
            return char(0x80 + i);
    return '?';
}

} // namespace

char16_t Cp1252::charFor(unsigned char byte) {
    return (byte >= 0x80 && byte < 0xA0) ? kHigh[byte - 0x80] : char16_t(byte);
}

QString Cp1252::toUnicode(QByteArrayView bytes) {
    QString out(bytes.size(), Qt::Uninitialized);
    QChar* dst = out.data();
    for (qsizetype i = 0; i < bytes.size(); ++i)
        dst[i] = QChar(charFor(static_cast<unsigned char>(bytes[i])));
    return out;
}

QByteArray Cp1252::fromUnicode(QStringView text) {
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        // A surrogate pair is one character outside the code page: one "?".
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        out.append(encodeOne(c.unicode()));
    }
    return out;
}

} // namespace mirel
