#include "settings/CommaList.h"

#include <algorithm>
#include <climits>

namespace mirel {

QList<QByteArray> splitCommaList(QByteArrayView text) {
    QList<QByteArray> out;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i)
        if (i == text.size() || text[i] == ',') {
            out.append(text.sliced(start, i - start).toByteArray());
            start = i + 1;
        }
    return out;
}

long leadingNumber(QByteArrayView s) {
    qsizetype i = 0;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t'))
        ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == '-' || s[i] == '+'))
        negative = s[i++] == '-';
    long v = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i)
        v = v > (LONG_MAX - (s[i] - '0')) / 10 ? LONG_MAX : v * 10 + (s[i] - '0');
    return negative ? -v : v;
}

Rgb parseRgb(QByteArrayView text) {
    const QList<QByteArray> f = splitCommaList(text);
    auto channel = [&](int i) {
        return i < f.size() ? int(std::clamp<long>(leadingNumber(f[i]), 0, 255)) : 0;
    };
    return {channel(0), channel(1), channel(2)};
}

} // namespace mirel
