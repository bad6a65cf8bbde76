#pragma once
// Turns skin sections into live controls and takes screens down again.
//
// Laying out "DEFAULT" starts every counter from zero and afterwards fixes
// the "DEFAULT" button count; laying out any other section first records the
// window's tables so ClearScreen can return to exactly that state. With
// animation on, each line is followed by a pause of AnimDelay ms during which
// the window repaints and events keep flowing (a timed event loop, not a busy
// wait); the host may be closed meanwhile, so every pause re-checks it.
#include <QByteArray>
#include <QString>
#include <functional>

class QWidget;

namespace mirel {

class IniHelpers;
class SkinHost;
class SoundPlayer;
struct ControlLine;
struct Folders;

/// What the engine needs from the rest of the program.
struct SkinContext {
    const Folders& folders;
    IniHelpers& ini;
    SoundPlayer* sounds = nullptr;
    bool animated = false;
    int animDelay = 0;
};

/// LayoutSection and ClearScreen.
class LayoutEngine {
  public:
    explicit LayoutEngine(SkinContext context) : m_ctx(context) {}

    void setAnimation(bool animated, int delayMs) {
        m_ctx.animated = animated;
        m_ctx.animDelay = delayMs;
    }
    /// Reads "Animated" and "AnimDelay" from a section (e.g. "STARTUP" of
    /// "terminal.skn"); keys that are missing keep their current value.
    void readAnimation(const QByteArray& section, const QString& file);
    const SkinContext& context() const { return m_ctx; }

    void LayoutSection(SkinHost& host, const QByteArray& section, const QString& skinFile);
    void ClearScreen(SkinHost& host);
    /// Removes the created controls beyond the first keep, last first, with
    /// the same animation as clearing (shut-down uses keep = 0). False when
    /// the host was destroyed during a pause.
    bool unloadControls(SkinHost& host, int keep);

    /// One control line into host (no pause); exposed for the dialogs' fixed lines.
    void layoutLine(SkinHost& host, const ControlLine& line, int keyNumber);

    /// Places every control of host again for its present size, by the
    /// line it was laid out from; nothing is created or removed.
    static void Relayout(SkinHost& host);
    /// Notes the line a control was placed by, for Relayout.
    static void rememberPlacement(QWidget* w, const QByteArray& line, int firstField = 3);

  private:
    /// Pauses AnimDelay ms with the window repainting; false if host went away.
    bool pause(SkinHost* host);
    void layoutSpecial(SkinHost& host, const ControlLine& line);
    void placeLine(SkinHost& host, const ControlLine& line, int keyNumber);

    SkinContext m_ctx;
};

} // namespace mirel
