#include "app/SkinBool.h"

#include "platform/CaseFold.h"

#include <QByteArray>

namespace mirel {

std::optional<bool> parseSkinBool(QByteArrayView text) {
    const QByteArray t = QByteArray(text.data(), text.size()).trimmed();
    if (equalsNoCase(t, "true"))
        return true;
    if (equalsNoCase(t, "false"))
        return false;
    bool ok = false;
    const double n = t.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return n != 0.0;
}

} // namespace mirel
