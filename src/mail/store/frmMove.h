#pragma once
// The move dialog: the folders a message can be moved to, under the names
// the user knows them by. The current folder is never offered.
#include "mail/store/FolderListDialog.h"
#include "mail/store/FolderManager.h"

namespace mirel {

class MessageSink;

/// frmMove: the display name chosen, or nothing.
class frmMove : public FolderListDialog {
    Q_OBJECT
public:
    static inline const QByteArray kSection = QByteArrayLiteral("EMAILMOVE");

    /// folders: every folder key; current: the one the messages are in.
    frmMove(const LayoutEngine& engine, const FolderNames& names, const QList<QByteArray>& folders,
            QByteArrayView current, MessageSink& messages, QWidget* parent = nullptr);

    /// The display name of the folder chosen; empty when closed without a choice.
    const QByteArray& result() const { return m_result; }
    void runCommand(const QByteArray& command) override;

private:
    MessageSink& m_messages;
    QByteArray m_result;
};

} // namespace mirel
