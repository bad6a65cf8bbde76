#include "platform/BinHexDecoder.h"

#include <array>

namespace mirel {
namespace {

constexpr char kAlphabet[] = "!\"#$%&'()*+,-012345689@ABCDEFGHIJKLMNPQRSTUVXYZ[`abcdefhijklmpqr";
constexpr QByteArrayView kMarker = "(This file must be converted with BinHex";

constexpr std::array<signed char, 256> makeTable() {
    std::array<signed char, 256> t{};
    for (auto& v : t)
        v = -1;
    for (int i = 0; i < 64; ++i)
        t[static_cast<unsigned char>(kAlphabet[i])] = static_cast<signed char>(i);
    return t;
}
constexpr auto kTable = makeTable();

// Where the encoded characters begin: after the colon that follows the
// marker line, or, without a marker, after a colon that opens a line.
qsizetype blockStart(QByteArrayView text) {
    const qsizetype marker = text.indexOf(kMarker);
    if (marker >= 0) {
        const qsizetype colon = text.indexOf(':', marker + kMarker.size());
        return colon < 0 ? -1 : colon + 1;
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == ':' && (i == 0 || text[i - 1] == '\n' || text[i - 1] == '\r'))
            return i + 1;
    }
    return -1;
}

quint32 bigEndian(QByteArrayView b, qsizetype at, int width) {
    quint32 v = 0;
    for (int i = 0; i < width; ++i)
        v = (v << 8) | static_cast<unsigned char>(b[at + i]);
    return v;
}

// length byte, name, version byte, type, creator, flags, two lengths
qsizetype headerSize(const QByteArray& bytes) {
    return 1 + static_cast<unsigned char>(bytes[0]) + 1 + 4 + 4 + 2 + 4 + 4;
}

// How many bytes the block can hold at most, as far as its header is known:
// the header with its CRC, then both forks with theirs. A few run-length
// codes could otherwise make gigabytes of a small message.
qsizetype declaredSize(const QByteArray& out) {
    if (out.isEmpty())
        return 1;
    const qsizetype header = headerSize(out) + 2;
    if (out.size() < header)
        return header;
    return header + qsizetype(bigEndian(out, header - 10, 4)) + 2 +
           qsizetype(bigEndian(out, header - 6, 4)) + 2;
}

// Six-bit characters to bytes, then the run-length expansion.
QByteArray unpack(QByteArrayView text, qsizetype from) {
    QByteArray packed;
    packed.reserve((text.size() - from) * 3 / 4 + 3);
    quint32 bits = 0;
    int count = 0;
    for (qsizetype i = from; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == ':')
            break;
        const int v = kTable[c];
        if (v < 0)
            continue; // line breaks and blanks between the characters
        bits = (bits << 6) | quint32(v);
        count += 6;
        if (count >= 8) {
            count -= 8;
            packed.append(char((bits >> count) & 0xff));
        }
    }

    QByteArray out;
    out.reserve(packed.size());
    for (qsizetype i = 0; i < packed.size() && out.size() < declaredSize(out); ++i) {
        const unsigned char b = static_cast<unsigned char>(packed[i]);
        if (b != 0x90) {
            out.append(char(b));
            continue;
        }
        if (i + 1 >= packed.size())
            break;
        const unsigned char n = static_cast<unsigned char>(packed[++i]);
        if (n == 0) {
            out.append(char(0x90));
            continue;
        }
        // A run may cross the end of the header, where the limit grows.
        for (qsizetype left = n - 1; left > 0 && !out.isEmpty();) {
            const qsizetype room = declaredSize(out) - out.size();
            if (room <= 0)
                break;
            const qsizetype k = qMin(left, room);
            out.append(k, out.back());
            left -= k;
        }
    }
    return out;
}

} // namespace

quint16 BinHexDecoder::crc(QByteArrayView bytes, quint16 start) {
    quint32 crc = start;
    for (char ch : bytes) {
        crc ^= quint32(static_cast<unsigned char>(ch)) << 8;
        for (int i = 0; i < 8; ++i)
            crc = (crc & 0x8000) ? ((crc << 1) ^ 0x1021) : (crc << 1);
    }
    return quint16(crc & 0xffff);
}

BinHexDecoder::Result BinHexDecoder::decode(QByteArrayView text) {
    Result r;
    const qsizetype start = blockStart(text);
    if (start < 0)
        return r;
    r.found = true;
    const QByteArray bytes = unpack(text, start);
    if (bytes.isEmpty())
        return r;

    const qsizetype nameLength = static_cast<unsigned char>(bytes[0]);
    const qsizetype headerEnd = headerSize(bytes);
    r.name = bytes.mid(1, nameLength);
    if (bytes.size() < headerEnd + 2)
        return r;
    const quint32 dataLength = bigEndian(bytes, headerEnd - 8, 4);
    const quint32 resourceLength = bigEndian(bytes, headerEnd - 4, 4);
    bool crcOk = crc(QByteArrayView(bytes).first(headerEnd)) == bigEndian(bytes, headerEnd, 2);

    const qsizetype dataStart = headerEnd + 2;
    r.data = bytes.mid(dataStart, qsizetype(dataLength));
    const qsizetype dataCrcAt = dataStart + qsizetype(dataLength);
    if (bytes.size() < dataCrcAt + 2)
        return r;
    crcOk = crcOk && crc(r.data) == bigEndian(bytes, dataCrcAt, 2);

    const qsizetype resourceStart = dataCrcAt + 2;
    r.resource = bytes.mid(resourceStart, qsizetype(resourceLength));
    const qsizetype resourceCrcAt = resourceStart + qsizetype(resourceLength);
    if (bytes.size() < resourceCrcAt + 2)
        return r;
    r.complete = true;
    r.crcOk = crcOk && crc(r.resource) == bigEndian(bytes, resourceCrcAt, 2);
    return r;
}

} // namespace mirel
