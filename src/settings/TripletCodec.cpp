#include "settings/TripletCodec.h"

#include "settings/CommaList.h"

#include <algorithm>

namespace mirel {

QByteArray encodeTriplets(QByteArrayView text) {
    QByteArray out(text.size() * 3, Qt::Uninitialized);
    char* d = out.data();
    for (const char ch : text) {
        const unsigned c = static_cast<unsigned char>(ch);
        *d++ = char('0' + c / 100);
        *d++ = char('0' + c / 10 % 10);
        *d++ = char('0' + c % 10);
    }
    return out;
}

QByteArray decodeTriplets(QByteArrayView digits) {
    QByteArray out;
    out.reserve(digits.size() / 3 + 1);
    for (qsizetype i = 0; i < digits.size(); i += 3) {
        const QByteArrayView group = digits.sliced(i, std::min<qsizetype>(3, digits.size() - i));
        bool fast = group.size() == 3;
        for (const char c : group)
            fast = fast && c >= '0' && c <= '9';
        const long v = fast ? (group[0] - '0') * 100 + (group[1] - '0') * 10 + (group[2] - '0')
                            : leadingNumber(group);
        out.append(v >= 0 && v <= 255 ? char(v) : '?');
    }
    return out;
}

} // namespace mirel
