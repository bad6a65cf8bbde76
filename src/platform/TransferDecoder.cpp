#include "platform/TransferDecoder.h"

#include "platform/BinHexDecoder.h"
#include "platform/GMimeRuntime.h"

#include <array>
#include <gmime/gmime.h>

namespace mirel {
namespace {

QByteArray runGMimeDecoder(QByteArrayView raw, GMimeContentEncoding encoding) {
    GMimeRuntime::ensure();
    GMimeEncoding state;
    g_mime_encoding_init_decode(&state, encoding);
    QByteArray out(qsizetype(g_mime_encoding_outlen(&state, size_t(raw.size()))) + 16,
                   Qt::Uninitialized);
    const size_t n = g_mime_encoding_flush(&state, raw.data(), size_t(raw.size()), out.data());
    out.truncate(qsizetype(n));
    return out;
}

} // namespace

TransferDecoder::Encoding TransferDecoder::fromName(QByteArrayView name) {
    const QByteArray n = name.trimmed().toByteArray().toLower();
    if (n == "quoted-printable")
        return Encoding::QuotedPrintable;
    if (n == "base64")
        return Encoding::Base64;
    if (n == "x-uuencode" || n == "uuencode" || n == "x-uue")
        return Encoding::Uuencode;
    if (n == "mac-binhex40")
        return Encoding::BinHex;
    return Encoding::None;
}

QByteArray TransferDecoder::decode(QByteArrayView raw, Encoding encoding) {
    switch (encoding) {
    case Encoding::QuotedPrintable:
        return decodeQuotedPrintable(raw);
    case Encoding::Base64:
        return decodeBase64(raw);
    case Encoding::Uuencode:
        return decodeUuencode(raw);
    case Encoding::BinHex:
        return decodeBinHex(raw);
    case Encoding::None:
        break;
    }
    return raw.toByteArray();
}

QByteArray TransferDecoder::decodeQuotedPrintable(QByteArrayView raw) {
    return runGMimeDecoder(raw, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
}

QByteArray TransferDecoder::decodeBase64(QByteArrayView raw) {
    // Attachments are most of what a session stores and nearly all of them
    // are base64, so this is GMime's decoder done four characters at a time,
    // with the same result for every input: characters outside the alphabet
    // are skipped, each four of the alphabet give three bytes, and the first
    // "=" ends the data, giving what the group it ends holds whole. A group
    // cut short without "=" gives nothing.
    static constexpr quint8 kSkip = 0xff, kEnd = 0xfe;
    static constexpr auto kRank = [] {
        std::array<quint8, 256> r{};
        r.fill(kSkip);
        const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        for (quint8 i = 0; i < 64; ++i)
            r[quint8(alphabet[i])] = i;
        r['='] = kEnd;
        return r;
    }();
    const auto* in = reinterpret_cast<const quint8*>(raw.data());
    const auto* const end = in + raw.size();
    QByteArray out(raw.size() / 4 * 3 + 3, Qt::Uninitialized);
    auto* const first = reinterpret_cast<quint8*>(out.data());
    quint8* o = first;
    const auto three = [&o](quint32 v) {
        o[0] = quint8(v >> 16);
        o[1] = quint8(v >> 8);
        o[2] = quint8(v);
        o += 3;
    };
    quint32 saved = 0;
    int n = 0;
    while (in < end) {
        if (n == 0) {
            // Whole groups of four, as long as nothing is to be skipped.
            while (end - in >= 4) {
                const quint32 a = kRank[in[0]], b = kRank[in[1]], c = kRank[in[2]],
                              d = kRank[in[3]];
                if ((a | b | c | d) & 0x80)
                    break;
                three(a << 18 | b << 12 | c << 6 | d);
                in += 4;
            }
            if (in == end)
                break;
        }
        const quint8 r = kRank[*in++];
        if (r == kSkip)
            continue;
        if (r == kEnd) {
            if (n == 2) {
                *o++ = quint8(saved >> 4);
            } else if (n == 3) {
                *o++ = quint8(saved >> 10);
                *o++ = quint8(saved >> 2);
            }
            break;
        }
        saved = saved << 6 | r;
        if (++n == 4) {
            three(saved);
            n = 0;
        }
    }
    out.truncate(qsizetype(o - first));
    return out;
}

QByteArray TransferDecoder::decodeUuencode(QByteArrayView raw) {
    qsizetype pos = 0;
    bool begun = false;
    while (pos < raw.size()) {
        qsizetype end = raw.indexOf('\n', pos);
        if (end < 0)
            end = raw.size();
        const QByteArrayView line = raw.sliced(pos, end - pos);
        pos = end + 1;
        if (line.startsWith("begin ")) {
            begun = true;
            break;
        }
    }
    if (!begun)
        return raw.toByteArray();

    QByteArray out;
    while (pos < raw.size()) {
        qsizetype end = raw.indexOf('\n', pos);
        if (end < 0)
            end = raw.size();
        QByteArrayView line = raw.sliced(pos, end - pos);
        pos = end + 1;
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.isEmpty() || line.trimmed() == "end")
            break;
        // The first character gives the byte count of the line; the rest
        // carries six bits per character, blank and backquote both zero.
        const int count = (static_cast<unsigned char>(line[0]) - 32) & 63;
        if (count == 0)
            break;
        auto sixBits = [&](qsizetype i) -> quint32 {
            return i < line.size() ? quint32((static_cast<unsigned char>(line[i]) - 32) & 63) : 0;
        };
        int produced = 0;
        for (qsizetype i = 1; produced < count; i += 4) {
            const quint32 group = (sixBits(i) << 18) | (sixBits(i + 1) << 12) |
                                  (sixBits(i + 2) << 6) | sixBits(i + 3);
            for (int shift = 16; shift >= 0 && produced < count; shift -= 8, ++produced)
                out.append(char((group >> shift) & 0xff));
        }
    }
    return out;
}

QByteArray TransferDecoder::decodeBinHex(QByteArrayView raw) {
    BinHexDecoder::Result r = BinHexDecoder::decode(raw);
    return r.found ? r.data : raw.toByteArray();
}

} // namespace mirel
