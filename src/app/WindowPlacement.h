#pragma once
#include <QRect>

namespace mirel {

class SettingsStore;

/// Where the main window stands. When the family shell is running
/// ("General"/"Running" true) it publishes the module's rectangle in pixels
/// under "Screen" (Left, Top, Right, Bottom; right and bottom exclusive);
/// a missing edge falls back to the work area's. Otherwise, or when the
/// published rectangle is empty, the window covers the work area.
QRect mainWindowRect(const SettingsStore& store, const QRect& workArea);

} // namespace mirel
