// Fuzz target: the HTML-to-text conversion must give exactly the bytes of the
// rule-by-rule reference scan. Inputs are kept small because the reference
// is quadratic on input built to defeat it.
#include "mail/mime/HTML2Text.h"

#include "../tests/mail/mime/Html2TextReference.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 8192)
        return 0;
    const QByteArray html(reinterpret_cast<const char*>(data), qsizetype(size));
    if (mirel::HTML2Text(html) != mirel::test::referenceHtml2Text(html))
        std::abort();
    return 0;
}
