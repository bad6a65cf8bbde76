#pragma once
#include <QByteArray>

namespace mirel {

/// The outcome of a mail-client action: number 0 is success; otherwise the
/// number and description are what the user and the debug log are shown.
struct TransportError {
    int number = 0;
    QByteArray description;

    explicit operator bool() const { return number != 0; }
    static TransportError ok() { return {}; }
};

} // namespace mirel
