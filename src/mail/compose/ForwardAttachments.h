#pragma once
// A forwarded message takes its attachments along as files: each stored
// attachment is written into the scratch folder "EmailTemp" and listed for
// the compose window, which attaches the files again. The folder is emptied
// once the window has closed, so nothing of a forward stays on disk.
//
// Names come from strangers: a name is used only as a plain file name inside
// the scratch folder; one with folder parts, none at all or one used twice
// is replaced by "att<n>.att".
#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace mirel {

class MailStore;

/// PrepareForwardAttachments and the clean-up after the forward.
class ForwardAttachments {
public:
    /// Writes the message's attachments into folder (created when missing)
    /// and returns the forward list (path, character 1, name); nothing when
    /// an attachment has no data or a file cannot be written.
    static std::optional<QList<QByteArray>> PrepareForwardAttachments(MailStore& store,
                                                                      QByteArrayView mailFolder,
                                                                      qint32 id,
                                                                      const QString& folder);
    /// Deletes every file of folder; errors are ignored.
    static void emptyFolder(const QString& folder);
    /// The plain file name an attachment is written under (1-based position).
    static QByteArray fileNameFor(QByteArrayView storedName, int position);
};

} // namespace mirel
