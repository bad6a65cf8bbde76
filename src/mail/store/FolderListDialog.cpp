#include "mail/store/FolderListDialog.h"

#include "platform/Cp1252.h"
#include "ui/SoundPlayer.h"

#include <QKeyEvent>
#include <QListWidget>
#include <QMouseEvent>

namespace mirel {

FolderListDialog::FolderListDialog(const LayoutEngine& engine, QByteArray section,
                                   const QString& title, QByteArray escapeCommand, QSize fallback,
                                   QWidget* parent)
    : SkinDialog(engine, std::move(section), title, parent), m_list(new QListWidget(this)),
      m_escape(std::move(escapeCommand)) {
    m_list->setObjectName(QStringLiteral("MLmessages"));
    m_list->setAccessibleName(QStringLiteral("Folders"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->hide();
    setPlaced(PlacedPart::MessageList, m_list);
    layOut(fallback);
    shapeAndHover();
}

FolderListDialog::~FolderListDialog() = default;

void FolderListDialog::fillRows(const QList<QByteArray>& rows, const QByteArray& select) {
    m_list->clear();
    for (const QByteArray& row : rows) {
        auto* item = new QListWidgetItem(Cp1252::toUnicode(row), m_list);
        // Rows take the list's own colours, whatever the style would draw.
        item->setForeground(m_list->palette().color(QPalette::Text));
        item->setBackground(m_list->palette().color(QPalette::Base));
        if (!select.isEmpty() && row == select)
            m_list->setCurrentItem(item);
    }
}

QByteArray FolderListDialog::selectedRow() const {
    const QList<QListWidgetItem*> selected = m_list->selectedItems();
    return selected.isEmpty() ? QByteArray() : Cp1252::fromUnicode(selected.first()->text());
}

void FolderListDialog::buttonClicked(int index) {
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    runCommand(b.command);
}

void FolderListDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        runCommand(m_escape);
        return;
    }
    SkinHost::keyPressEvent(event);
}


} // namespace mirel
