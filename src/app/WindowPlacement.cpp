#include "app/WindowPlacement.h"

#include "skin/ControlLine.h"
#include "platform/SettingsStore.h"
#include "settings/CommaList.h"

#include <algorithm>

namespace mirel {
namespace {

int edge(const SettingsStore& store, const char* key, int fallback) {
    const QByteArray v = store.GetSetting(kFamilyApp, "Screen", key, QByteArray());
    if (v.trimmed().isEmpty())
        return fallback;
    return int(std::clamp<long>(leadingNumber(v), -1000000, 1000000));
}

} // namespace

QRect mainWindowRect(const SettingsStore& store, const QRect& workArea) {
    const auto running = parseSkinBool(store.GetSetting(kFamilyApp, "General", "Running"));
    if (!running.value_or(false))
        return workArea;
    const int left = edge(store, "Left", workArea.left());
    const int top = edge(store, "Top", workArea.top());
    const int right = edge(store, "Right", workArea.left() + workArea.width());
    const int bottom = edge(store, "Bottom", workArea.top() + workArea.height());
    if (right <= left || bottom <= top)
        return workArea;
    return QRect(left, top, right - left, bottom - top);
}

} // namespace mirel
