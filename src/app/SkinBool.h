#pragma once
#include <QByteArrayView>
#include <optional>

namespace mirel {

/// Reads a skin or store switch: "True"/"False" in any case, or a number
/// (0 is false, anything else true). Other text is no boolean at all; the
/// caller then keeps its default, as for a missing key.
std::optional<bool> parseSkinBool(QByteArrayView text);

} // namespace mirel
