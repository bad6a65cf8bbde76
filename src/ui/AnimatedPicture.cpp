#include "ui/AnimatedPicture.h"

#include <QBuffer>
#include <QImageReader>

namespace mirel {

GifFrames readGifFrames(const QByteArray& bytes) {
    GifFrames out;
    QByteArray copy = bytes;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer); // by content: a still picture under a .gif name still shows
    // A corrupt file can claim huge dimensions; refuse rather than allocate.
    reader.setAllocationLimit(64);
    // Frame count and delays come from the decoder; a broken frame ends the
    // animation there and keeps what was read before it. The budget keeps a
    // file of endless large frames from eating the memory.
    qint64 budget = qint64(256) * 1024 * 1024;
    constexpr int kMaxFrames = 5000;
    while (budget > 0 && out.pictures.size() < kMaxFrames) {
        QImage frame;
        if (!reader.read(&frame) || frame.isNull())
            break;
        budget -= frame.sizeInBytes() + 1024; // with what a picture costs beside its pixels
        out.pictures.append(QPixmap::fromImage(frame));
        out.delays.append(qMax(0, reader.nextImageDelay()));
        if (!reader.canRead())
            break;
    }
    return out;
}

AnimatedPicture::AnimatedPicture(GifFrames frames, QWidget* parent)
    : QLabel(parent), m_frames(std::move(frames)) {
    setScaledContents(true);
    connect(&m_timer, &QTimer::timeout, this, &AnimatedPicture::AnimationTick);
    if (!m_frames.pictures.isEmpty())
        showFrame(0);
}

void AnimatedPicture::showFrame(int i) {
    m_current = i;
    setPixmap(m_frames.pictures[i]);
}

void AnimatedPicture::start() {
    if (m_frames.pictures.isEmpty())
        return;
    showFrame(0);
    // A zero delay stops the timer: that frame stays on screen.
    m_timer.setInterval(m_frames.delays[0]);
    if (m_frames.delays[0] > 0 && frameCount() > 1)
        m_timer.start();
}

void AnimatedPicture::AnimationTick() {
    if (m_frames.pictures.isEmpty() || (m_closing && m_closing()))
        return;
    showFrame((m_current + 1) % frameCount());
    const int delay = m_frames.delays[m_current];
    if (delay <= 0) {
        m_timer.stop();
        return;
    }
    m_timer.setInterval(delay);
}

} // namespace mirel
