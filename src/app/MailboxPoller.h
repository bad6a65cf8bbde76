#pragma once
// The two mailboxes through which the family shell drives the module, both in
// the shared store. Invariants:
//  - the exit mailbox ("EXIT" / main caption == "1") is honoured in every
//    state, even while start-up is still running;
//  - the command mailbox ("Voice" / "Mirel") is read only once the window is
//    ready; its value is compared exactly (case-sensitive) with each button's
//    command, in index order, and every match is clicked in the same tick,
//    the mailbox being emptied before each click;
//  - a value that names no button stays where it is for the next tick;
//  - the module never writes "1" or a command itself, only resets.
#include <QByteArray>
#include <functional>

namespace mirel {

class SettingsStore;

/// One tick of the mailbox timer, against a live button table.
class MailboxPoller {
  public:
    /// The button table as it stands during the tick: a click may change it
    /// (a screen switch), so count and command are asked again each step.
    struct Buttons {
        std::function<int()> count;
        std::function<QByteArray(int)> command;
        std::function<void(int)> click;
    };

    enum class Outcome { Idle, ShutDown, Clicked, Unmatched };

    explicit MailboxPoller(SettingsStore& store) : m_store(store) {}

    /// Empties both mailboxes, as a fresh start does.
    void reset();
    Outcome poll(bool ready, const Buttons& buttons);

  private:
    SettingsStore& m_store;
};

} // namespace mirel
