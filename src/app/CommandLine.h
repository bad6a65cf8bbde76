#pragma once
// The module takes no options of its own except the two that stand in for
// the family shell: "--send COMMAND" drops a command into the command
// mailbox of the running instance, "--quit" raises the exit mailbox.
#include <QByteArray>
#include <QString>
#include <QStringList>

namespace mirel {

class SettingsStore;

/// What the process was asked to do.
struct CommandLine {
    enum class Mode { Run, Send, Quit, Invalid };
    Mode mode = Mode::Run;
    /// The command for Send, as bytes of the skins' code page.
    QByteArray command;
    QString error;

    /// args without the program name.
    static CommandLine parse(const QStringList& args);

    static QString usage();

    /// The command as it must be written into the store so that it reads
    /// back unchanged: the store trims values and drops one pair of quotes
    /// around them, so such commands travel inside an extra pair.
    static QByteArray storedForm(const QByteArray& command);

    /// Carries out Send or Quit against store; serverName identifies the
    /// running instance. Returns the process exit code; *message receives
    /// what to print (empty when nothing).
    int deliver(SettingsStore& store, const QString& serverName, QString* message) const;
};

} // namespace mirel
