#pragma once
// "Animated" and "AnimDelay": whether a window builds up and tears down
// control by control, and the pause after each. Read from "DEFAULT" of
// "terminal.skn" by the main window and from "STARTUP" by the dialogs.
#include <QByteArrayView>
#include <QString>

namespace mirel {

class IniHelpers;

/// The two animation switches of a skin section.
struct AnimationSwitches {
    bool animated = false;
    int delay = 0;

    /// A theme cannot stall a window for longer than this per control.
    static constexpr int kMaxDelay = 5000;

    /// Applies the keys present in the section; a missing key, or an
    /// "Animated" that is no boolean, keeps the current value.
    void read(IniHelpers& ini, QByteArrayView section, const QString& file);
};

} // namespace mirel
