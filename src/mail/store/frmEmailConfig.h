#pragma once
// The folder manager: creates, renames and deletes user folders. The fixed
// folders are never listed, so they cannot be changed here; the names typed
// are checked by FolderManager before anything touches the disk.
#include "mail/store/FolderListDialog.h"

#include <functional>

namespace mirel {

class FolderManager;
class MessageSink;

/// frmEmailConfig over a FolderManager.
class frmEmailConfig : public FolderListDialog {
    Q_OBJECT
public:
    static inline const QByteArray kSection = QByteArrayLiteral("EMAILCONFIG");

    frmEmailConfig(const LayoutEngine& engine, FolderManager& folders, MessageSink& messages,
                   QWidget* parent = nullptr);

    /// Asks for a folder name (prompt, preset); empty for Cancel. By
    /// default the skinned input dialog.
    using NamePrompt = std::function<QByteArray(const QString& prompt, const QByteArray& preset)>;
    void setNamePrompt(NamePrompt prompt) { m_prompt = std::move(prompt); }
    /// Told when a folder is about to go (to = "0") or was renamed (to = the
    /// new name), so a screen showing it can follow.
    using Retarget = std::function<void(const QByteArray& from, const QByteArray& to)>;
    void setRetarget(Retarget retarget) { m_retarget = std::move(retarget); }

    void runCommand(const QByteArray& command) override;

private:
    void create();
    void rename();
    void remove();
    bool haveSelection(QByteArray& name);

    FolderManager& m_folders;
    MessageSink& m_messages;
    NamePrompt m_prompt;
    Retarget m_retarget;
};

} // namespace mirel
