#include "app/OpenCommand.h"

#include "platform/Cp1252.h"
#include "platform/PathResolver.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace mirel {

OpenCommand OpenCommand::parse(QByteArrayView command) {
    const QByteArray c(command.data(), command.size());
    OpenCommand out;
    if (c.startsWith('"')) {
        const qsizetype close = c.indexOf('"', 1);
        if (close < 0) {
            // An unbalanced quote: take the rest as the program rather than
            // dropping the click.
            out.program = c.mid(1);
        } else {
            out.program = c.mid(1, close - 1);
            out.parameters = c.mid(close + 1);
        }
        return out;
    }
    const qsizetype blank = c.indexOf(' ', 1);
    if (blank > 0) {
        out.program = c.left(blank);
        out.parameters = c.mid(blank + 1);
    } else {
        out.program = c;
    }
    return out;
}

OpenCommand::Target OpenCommand::classify(const QString& workDir, QString* resolved) const {
    const QString name = Cp1252::toUnicode(program).trimmed();
    if (name.isEmpty())
        return Target::Nothing;
    // "scheme:" of two letters or more: a drive letter of a Windows-written
    // skin ("C:\x") is one letter and stays a path.
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+:"));
    if (scheme.match(name).hasMatch()) {
        if (resolved)
            *resolved = name;
        return Target::Address;
    }
    QString local = name;
    local.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (QFileInfo(local).isRelative())
        local = QDir(workDir).filePath(local);
    local = resolvePath(local);
    const QFileInfo info(local);
    if (info.isFile() && info.isExecutable()) {
        if (resolved)
            *resolved = info.absoluteFilePath();
        return Target::Program;
    }
    if (info.exists()) {
        if (resolved)
            *resolved = info.absoluteFilePath();
        return Target::Document;
    }
    if (!name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'))) {
        const QString onPath = QStandardPaths::findExecutable(name);
        if (!onPath.isEmpty()) {
            if (resolved)
                *resolved = onPath;
            return Target::Program;
        }
    }
    // Nothing the desktop could open; the click fails silently.
    if (resolved)
        *resolved = local;
    return Target::Nothing;
}

} // namespace mirel
