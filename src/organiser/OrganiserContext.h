#pragma once
// What every organiser operation needs from the shell, passed in so tests
// can give their own folders, clock and message sink.
#include "platform/Clock.h"
#include "platform/MessageSink.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"

#include <functional>
#include <optional>

namespace mirel {

/// Folders, INI helpers, clock and message sink of one running program.
struct OrganiserContext {
    const Folders& folders;
    IniHelpers& ini;
    const Clock& clock;
    MessageSink& messages;
    /// Called after every save or delete that the overview shows.
    std::function<void()> refreshOverview = [] {};

    /// The folder a key of section "MIREL" in "directories.ini" names
    /// ("Notes", "Logbook", "Todo"), read anew at every call; the default
    /// under the program folder only when the key is absent or empty. A
    /// folder the user named is never swapped for another one.
    QString itemFolder(const QByteArray& key) const;
    /// False, after telling the user, when that folder does not exist.
    bool itemFolderPresent(const QByteArray& key) const;
    QString directoriesIni() const {
        return folders.path(QStringLiteral("\\mirel\\directories.ini"));
    }
    QString defaultItemFolder(const QByteArray& key) const;
    /// The local time as fourteen digits "yyyymmddHhNnSs".
    QByteArray stampNow() const;
    /// Key "load" of a screen's skin section: the list-click sound.
    QByteArray listSound(const QByteArray& section) const;
    /// "Are you sure to delete this item?" with Yes and No.
    bool confirmDelete() const;
    /// Deletes an item file; a file that will not go is reported.
    void deleteFile(const QString& path) const;
    /// The lines of the item file `name` in `folder`; a file that cannot be
    /// read is reported by name and gives nullopt.
    std::optional<QList<QByteArray>> readItem(const QString& folder, const QByteArray& name) const;
    /// Reports a file error with the file's name; the operation then ends.
    void reportFileError(const QString& error) const;
};

} // namespace mirel
