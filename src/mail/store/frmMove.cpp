#include "mail/store/frmMove.h"

#include <QListWidget>

namespace mirel {

frmMove::frmMove(const LayoutEngine& engine, const FolderNames& names,
                 const QList<QByteArray>& folders, QByteArrayView current, MessageSink& messages,
                 QWidget* parent)
    : FolderListDialog(engine, kSection, QStringLiteral("Move to folder"), "QUIT", QSize(340, 380),
                       parent),
      m_messages(messages) {
    const QByteArray here = current.isEmpty() ? QByteArray("0") : current.toByteArray();
    QList<QByteArray> rows;
    for (const QByteArray& key : folders)
        if (key != here)
            rows.append(names.displayName(key));
    fillRows(rows);
    // A double click on a folder chooses it, as the move button would.
    connect(MLmessages(), &QListWidget::itemActivated, this, [this] { runCommand("OK"); });
}

void frmMove::runCommand(const QByteArray& command) {
    const QByteArray upper = command.toUpper();
    if (upper == "OK") {
        m_result = selectedRow();
        if (m_result.isEmpty()) {
            m_messages.showMessage(QStringLiteral("Please choose the folder to move to."),
                                   kMessageTitle, MessageSink::Icon::Information);
            return;
        }
        finish();
    } else if (upper == "QUIT") {
        m_result.clear();
        finish();
    } else {
        startProgram(command);
    }
}

} // namespace mirel
