// Fuzz target: the HTML-to-text conversion of any bytes ends, and its text
// never outgrows the bound its output buffer is sized by (the blank line of
// "<p>": four bytes for three).
#include "mail/mime/HTML2Text.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray html(reinterpret_cast<const char*>(data), qsizetype(size));
    if (size_t(mirel::HTML2Text(html).size()) > size + size / 3 + 8)
        std::abort();
    return 0;
}
