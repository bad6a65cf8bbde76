#pragma once
// The decision half of playing a skin sound: switches from "terminal.skn",
// the file a sound name stands for, and whether it is worth handing to a
// player. Playback itself lives with the widgets.
#include <QByteArray>
#include <QString>
#include <optional>

namespace mirel {

class IniHelpers;

struct SoundSwitches {
    bool sound = true;
    bool multiple = false;
};

/// How a sound is to be played.
struct SoundRequest {
    QString path;
    bool overlap = false; // "Multiple": may overlap others instead of replacing
    bool wait = false;
};

class SkinSound {
  public:
    /// Reads "Sound" and "Multiple" from section "DEFAULT" of terminalSkn.
    static SoundSwitches readSwitches(IniHelpers& ini, const QString& terminalSkn);
    /// A name without a colon is a theme sound (theme folder + name + ".wav");
    /// with a colon it is a full path (a leading drive letter is dropped).
    static QString soundPath(QByteArrayView name, const QString& themeFolder);
    /// Nothing when sound is off, the name is empty or the file is missing or empty.
    static std::optional<SoundRequest>
    plan(QByteArrayView name, bool wait, const SoundSwitches& switches, const QString& themeFolder);
};

} // namespace mirel
