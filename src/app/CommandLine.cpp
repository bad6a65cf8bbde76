#include "app/CommandLine.h"

#include "app/CommandTable.h"
#include "app/ShellValues.h"
#include "app/SingleInstance.h"
#include "platform/Cp1252.h"
#include "platform/SettingsStore.h"

namespace mirel {

QString CommandLine::usage() {
    return QStringLiteral("usage: mirel [--send COMMAND | --quit]");
}

CommandLine CommandLine::parse(const QStringList& args) {
    CommandLine out;
    if (args.isEmpty())
        return out;
    const QString& first = args.first();
    if (first == QLatin1String("--quit") && args.size() == 1) {
        out.mode = Mode::Quit;
        return out;
    }
    if (first == QLatin1String("--send") && args.size() == 2 && !args[1].isEmpty()) {
        out.command = Cp1252::fromUnicode(args[1]);
        // Anything a script can send would otherwise start any program a
        // theme button names, without the question a click asks.
        if (!matchCommand(out.command).matched()) {
            out.mode = Mode::Invalid;
            out.error = QStringLiteral("mirel: --send takes one of Mirel's own commands "
                                       "(such as NOTES); it never starts a program");
            return out;
        }
        out.mode = Mode::Send;
        return out;
    }
    out.mode = Mode::Invalid;
    out.error = usage();
    return out;
}

QByteArray CommandLine::storedForm(const QByteArray& command) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    const bool quoted = command.size() >= 2 && command.startsWith('"') && command.endsWith('"');
    const bool padded = !command.isEmpty() && (blank(command.front()) || blank(command.back()));
    if (quoted || padded)
        return '"' + command + '"';
    return command;
}

int CommandLine::deliver(SettingsStore& store, const QString& serverName, QString* message) const {
    QString error;
    switch (mode) {
    case Mode::Run:
        return 0;
    case Mode::Invalid:
        if (message)
            *message = this->error;
        return 2;
    case Mode::Quit:
        if (!store.SaveSetting(kFamilyApp, kExitSection, kExitKey, "1", &error)) {
            if (message)
                *message = QStringLiteral("mirel: cannot write the exit mailbox: ") + error;
            return 1;
        }
        return 0;
    case Mode::Send:
        // Nobody would read it: a new start empties the mailbox first. Say so
        // rather than let the caller wait for a screen that never comes.
        if (!SingleInstance::ask(serverName, QByteArrayLiteral("ping"))) {
            if (message)
                *message = QStringLiteral("mirel: no running instance to send the command to");
            return 1;
        }
        if (!store.SaveSetting(kFamilyApp, kVoiceSection, kVoiceKey, storedForm(command), &error)) {
            if (message)
                *message = QStringLiteral("mirel: cannot write the command mailbox: ") + error;
            return 1;
        }
        return 0;
    }
    return 2;
}

} // namespace mirel
