#include "platform/CaseFold.h"

#include <QByteArray>
#include <array>
#include <cstdint>
#include <cstring>

namespace mirel {
namespace {

constexpr std::array<unsigned char, 256> makeFold() {
    std::array<unsigned char, 256> t{};
    for (int i = 0; i < 256; ++i)
        t[i] = static_cast<unsigned char>(i);
    for (int c = 'A'; c <= 'Z'; ++c)
        t[c] = static_cast<unsigned char>(c + 32);
    for (int c = 0xC0; c <= 0xDE; ++c)
        if (c != 0xD7) // multiplication sign has no lower case
            t[c] = static_cast<unsigned char>(c + 32);
    t[0x8A] = 0x9A; // S caron
    t[0x8C] = 0x9C; // OE
    t[0x8E] = 0x9E; // Z caron
    t[0x9F] = 0xFF; // Y diaeresis
    return t;
}

constexpr auto kFold = makeFold();

} // namespace

unsigned char foldCase(unsigned char c) {
    return kFold[c];
}

bool equalsNoCase(QByteArrayView a, QByteArrayView b) {
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i)
        if (kFold[static_cast<unsigned char>(a[i])] != kFold[static_cast<unsigned char>(b[i])])
            return false;
    return true;
}

int compareNoCase(QByteArrayView a, QByteArrayView b) {
    const qsizetype n = std::min(a.size(), b.size());
    qsizetype i = 0;
    // Sorted lists compare long equal prefixes (dates, times): those are
    // passed eight bytes at a time.
    for (; i + 8 <= n; i += 8) {
        uint64_t x, y;
        std::memcpy(&x, a.data() + i, 8);
        std::memcpy(&y, b.data() + i, 8);
        if (x != y)
            break;
    }
    for (; i < n; ++i) {
        if (a[i] == b[i])
            continue;
        const int d = int(kFold[static_cast<unsigned char>(a[i])]) -
                      int(kFold[static_cast<unsigned char>(b[i])]);
        if (d != 0)
            return d;
    }
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

QByteArray toFolded(QByteArrayView v) {
    QByteArray out(v.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < v.size(); ++i)
        out[i] = char(kFold[static_cast<unsigned char>(v[i])]);
    return out;
}

bool containsNoCase(QByteArrayView haystack, QByteArrayView needle) {
    return toFolded(haystack).contains(toFolded(needle));
}

} // namespace mirel
