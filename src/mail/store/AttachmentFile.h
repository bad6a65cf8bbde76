#pragma once
// Writing a stored attachment back to a file the user chose. The name
// proposed for it comes from the mail, so it is cut to its last path
// component; the file written holds exactly the attachment's bytes, and an
// older, longer file at the same place is replaced whole.
#include <QByteArray>
#include <QString>
#include <functional>

namespace mirel {

/// SaveSelectedAttachments' file name rules and WriteAttachmentFile.
class AttachmentFile {
public:
    /// Content is written in pieces of this many bytes, with pending events
    /// run before each one, so the window stays responsive.
    static constexpr qsizetype kPiece = 10240;

    /// The name a Save As dialog proposes for an attachment's full name:
    /// its last path component ("attachment" when nothing usable is left).
    static QString proposedName(const QString& fullName);
    /// "Selected files (*.ext);;All files (*.*)"; the extension is what
    /// follows the last "." unless that "." starts the name, else "*".
    static QString saveFilter(const QString& fullName);

    /// Runs between pieces; by default lets pending events run.
    using Between = std::function<void()>;
    /// Writes data to path; on failure returns false with a reason in error.
    static bool WriteAttachmentFile(const QByteArray& data, const QString& path,
                                    QString* error = nullptr, const Between& between = {});
};

} // namespace mirel
