#include "platform/GMimeRuntime.h"

#include <gmime/gmime.h>
#include <mutex>

namespace mirel {

void GMimeRuntime::ensure() {
    static std::once_flag once;
    std::call_once(once, [] { g_mime_init(); });
}

} // namespace mirel
