#include "ui/SoundPlayer.h"

#include "settings/Folders.h"
#include "settings/IniHelpers.h"

#include <QAudioDevice>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QThread>
#include <QTimer>
#include <QUrl>

namespace mirel {
namespace {

constexpr int kPoolSize = 4;
// The blocking form must not hang on a file the player never finishes.
constexpr int kMaxWaitMs = 30000;

// The player only understands RIFF/WAVE; anything else is skipped here
// instead of being handed to it.
bool looksLikeWave(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = f.read(12);
    return head.size() == 12 && head.startsWith("RIFF") && head.mid(8, 4) == "WAVE";
}

} // namespace

SoundPlayer::SoundPlayer(const Folders& folders, IniHelpers& ini, QObject* parent)
    : QObject(parent), m_folders(folders), m_ini(ini) {}

SoundPlayer::~SoundPlayer() = default;

void SoundPlayer::PlaySkinSound(const QByteArray& name, bool wait) {
    // The switches are read at every call so an edited theme file takes
    // effect at the next sound.
    const SoundSwitches switches =
        SkinSound::readSwitches(m_ini, m_folders.themeFile(QStringLiteral("terminal.skn")));
    std::optional<SoundRequest> request =
        SkinSound::plan(name, wait, switches, m_folders.themeFolder());
    if (!request || !looksLikeWave(request->path))
        return;
    m_last = request;
    ++m_requests;
    play(*request);
}

QSoundEffect* SoundPlayer::freeEffect(bool overlap) {
    if (!overlap) {
        if (!m_single)
            m_single = new QSoundEffect(this);
        m_single->stop();
        return m_single;
    }
    for (QSoundEffect* e : m_pool)
        if (!e->isPlaying())
            return e;
    if (int(m_pool.size()) < kPoolSize) {
        m_pool.push_back(new QSoundEffect(this));
        return m_pool.back();
    }
    // Every voice busy: the oldest sound gives way.
    QSoundEffect* e = m_pool.front();
    m_pool.erase(m_pool.begin());
    m_pool.push_back(e);
    e->stop();
    return e;
}

void SoundPlayer::play(const SoundRequest& request) {
    if (QMediaDevices::audioOutputs().isEmpty())
        return;
    QSoundEffect* effect = freeEffect(request.overlap);
    effect->setSource(QUrl::fromLocalFile(request.path));
    effect->play();
    if (!request.wait)
        return;
    QEventLoop loop;
    QTimer guard;
    guard.setSingleShot(true);
    connect(&guard, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(effect, &QSoundEffect::playingChanged, &loop, [&] {
        if (!effect->isPlaying())
            loop.quit();
    });
    connect(effect, &QSoundEffect::statusChanged, &loop, [&] {
        if (effect->status() == QSoundEffect::Error)
            loop.quit();
    });
    guard.start(kMaxWaitMs);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

} // namespace mirel
