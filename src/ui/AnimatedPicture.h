#pragma once
// An animated picture: every frame of a GIF with its own delay, shown one at
// a time by one timer running at the delay of the frame on screen. A delay
// of 0 stops the timer and leaves that frame showing.
#include <QLabel>
#include <QList>
#include <QPixmap>
#include <QTimer>
#include <functional>

namespace mirel {

struct GifFrames {
    QList<QPixmap> pictures;
    QList<int> delays; // milliseconds
};

/// Decodes the frames of an animation file in memory; empty on failure.
GifFrames readGifFrames(const QByteArray& bytes);

/// A label that cycles through its frames.
class AnimatedPicture : public QLabel {
    Q_OBJECT
  public:
    AnimatedPicture(GifFrames frames, QWidget* parent = nullptr);

    int frameCount() const { return int(m_frames.pictures.size()); }
    int currentFrame() const { return m_current; }
    int interval() const { return m_timer.interval(); }
    bool running() const { return m_timer.isActive(); }
    /// Ticks are skipped while this returns true (the window is closing).
    void setPausedWhen(std::function<bool()> closing) { m_closing = std::move(closing); }
    void start();
    /// One animation step: next frame (wrapping) at its own delay.
    void AnimationTick();

  private:
    void showFrame(int i);

    GifFrames m_frames;
    int m_current = 0;
    QTimer m_timer;
    std::function<bool()> m_closing;
};

} // namespace mirel
