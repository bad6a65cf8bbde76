#pragma once
// Plays skin sounds. Without "Multiple" one effect is reused, so a new sound
// replaces the one playing; with it a small pool lets sounds overlap. With no
// audio output at all nothing is started. Every failure is silent.
#include "skin/SkinSound.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <vector>

class QSoundEffect;

namespace mirel {

class IniHelpers;
struct Folders;

/// PlaySkinSound over Qt Multimedia; also remembers what it was asked to play.
class SoundPlayer : public QObject {
    Q_OBJECT
  public:
    SoundPlayer(const Folders& folders, IniHelpers& ini, QObject* parent = nullptr);
    ~SoundPlayer() override;

    void PlaySkinSound(const QByteArray& name, bool wait);

    /// The last request that passed the switches and file checks (for diagnostics).
    const std::optional<SoundRequest>& lastRequest() const { return m_last; }
    int requestCount() const { return m_requests; }

  private:
    void play(const SoundRequest& request);
    QSoundEffect* freeEffect(bool overlap);

    const Folders& m_folders;
    IniHelpers& m_ini;
    std::optional<SoundRequest> m_last;
    int m_requests = 0;
    QSoundEffect* m_single = nullptr;
    std::vector<QSoundEffect*> m_pool;
};

} // namespace mirel
