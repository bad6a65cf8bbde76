#pragma once
// Names shared by the main window, the mailboxes and the command line. The
// family shell looks the module up by these exact texts, so they never
// change with the theme or the language.
#include <QByteArray>
#include <QString>

namespace mirel {

/// The main window's title; also the key of the exit mailbox.
inline const QString kMainCaption = QStringLiteral("TORVEX Terminal - Mirel");
/// Prefix of the skin file name and of debug-log lines; key of the command mailbox.
inline const QByteArray kProductWord = QByteArrayLiteral("Mirel");
/// The title a second instance wears while it hands over to the first one,
/// so nothing can mistake it for the running main window.
inline const QString kSecondInstanceCaption = QStringLiteral("TORVEX Terminal - Mirel (starting)");

/// The two mailboxes in the family's shared store.
inline const QByteArray kExitSection = QByteArrayLiteral("EXIT");
inline const QByteArray kExitKey = QByteArrayLiteral("TORVEX Terminal - Mirel");
inline const QByteArray kVoiceSection = QByteArrayLiteral("Voice");
inline const QByteArray kVoiceKey = kProductWord;

/// Environment variable that makes the program print a line when it is ready
/// for input; used by the start-up benchmark and the whole-program tests.
inline constexpr const char* kReadyMarkerEnv = "MIREL_READY_MARKER";

} // namespace mirel
