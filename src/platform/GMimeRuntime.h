#pragma once

namespace mirel {

/// GMime must be initialised once per process before any use; every entry
/// point into it calls ensure(), which is cheap after the first call and
/// safe from any thread.
class GMimeRuntime {
  public:
    static void ensure();
};

} // namespace mirel
