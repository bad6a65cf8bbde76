#pragma once
#include <QDateTime>

namespace mirel {

/// "Now" for everything that stamps, names or schedules by time; tests pass
/// a clock of their own.
class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

/// The local time of the machine.
class SystemClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

/// A clock that stands where it is set; for tests and replays.
class FixedClock final : public Clock {
public:
    explicit FixedClock(QDateTime t = {}) : m_now(std::move(t)) {}
    QDateTime now() const override { return m_now; }
    void set(QDateTime t) { m_now = std::move(t); }
    void advanceSeconds(qint64 s) { m_now = m_now.addSecs(s); }

private:
    QDateTime m_now;
};

} // namespace mirel
