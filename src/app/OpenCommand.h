#pragma once
// A command that names no operation is started by the desktop, the way a
// shell "open" verb would: a program, a document or an address. The split
// into program and parameters follows the skins' conventions:
//   "prog with blanks" params  -> program between the first two quotes,
//                                 parameters everything after the second
//                                 (its leading blank included);
//   prog params                -> split at the first blank from the second
//                                 character on;
//   prog                       -> the whole command, no parameters.
#include <QByteArray>
#include <QString>

namespace mirel {

/// One "open" request, split and classified.
struct OpenCommand {
    enum class Target { Nothing, Program, Address, Document };

    QByteArray program;
    QByteArray parameters;

    static OpenCommand parse(QByteArrayView command);

    /// How the desktop should start it: a program when the name is an
    /// executable (found relative to workDir or on PATH), an address when it
    /// carries a URL scheme, otherwise a document opened with its viewer.
    /// resolved receives the path or URL text to hand over.
    Target classify(const QString& workDir, QString* resolved) const;
};

} // namespace mirel
