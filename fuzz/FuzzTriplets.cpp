// Fuzz target: the decimal-triplet decoder on arbitrary text, and the round
// trip of arbitrary bytes.
#include "settings/TripletCodec.h"

#include <cstdint>
#include <cstdlib>

using namespace mirel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QByteArray decoded = decodeTriplets(bytes);
    if (decoded.size() != (bytes.size() + 2) / 3)
        std::abort();
    if (decodeTriplets(encodeTriplets(bytes)) != bytes)
        std::abort();
    return 0;
}
