#pragma once
// User mail folders: directories under the mail root beside the fixed
// folders "0" to "3", each with the same three databases.
//
// Invariants:
// - A folder name is exactly one directory name directly under the mail
//   root: it is never empty, ".", ".." or one of the fixed keys, and holds no
//   "/" or NUL. Every operation checks the names it is given, so nothing is
//   created, renamed or removed anywhere else.
// - Deleting a folder removes its three databases (with their journals)
//   and then the directory; other files keep the directory and are
//   reported, the mail itself is gone either way.
// - Refusals and failures go to the MessageSink with a clear text; the
//   operation then changes nothing.
#include "platform/MessageSink.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <array>

namespace mirel {

class MailStore;

/// The names the user sees for the fixed folders (skin keys "defin",
/// "defout", "defsnd", "defdel"), and the way back from a name to a key.
struct FolderNames {
    std::array<QByteArray, 4> fixed;

    /// Falls back to plain English names where the skin gives none.
    explicit FolderNames(const std::array<QByteArray, 4>& skinTitles = {});
    QByteArray displayName(QByteArrayView key) const;
    /// A fixed folder's display name gives its key; any other text is a key.
    QByteArray keyOf(QByteArrayView displayName) const;
};

/// Lists, creates, renames and deletes user folders.
class FolderManager {
public:
    FolderManager(MailStore& store, MessageSink& messages);

    /// Why a name cannot be a user folder, or empty when it can.
    static QString refusal(QByteArrayView name);
    static bool isFixed(QByteArrayView key);

    /// User folder names in the order of their directory names.
    QList<QByteArray> userFolders() const;
    /// Every folder key: the fixed ones first, then the user folders.
    QList<QByteArray> allFolders() const;

    /// Returns the name created (trimmed), or empty when refused or failed.
    QByteArray create(QByteArrayView name);
    /// Returns the new name, or empty when nothing was renamed.
    QByteArray rename(QByteArrayView oldName, QByteArrayView newName);
    /// True when the folder's mail is gone.
    bool remove(QByteArrayView name);

private:
    bool refuse(QByteArrayView name);
    void tell(const QString& text);

    MailStore& m_store;
    MessageSink& m_messages;
};

} // namespace mirel
