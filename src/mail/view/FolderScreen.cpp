#include "mail/view/FolderScreen.h"

#include "mail/store/AttachmentFile.h"
#include "mail/store/MailStore.h"
#include "mail/store/frmEmailConfig.h"
#include "mail/store/frmMove.h"
#include "mail/view/EmailScreen.h"
#include "mail/view/SelectedMessages.h"
#include "platform/Cp1252.h"
#include "ui/SkinHost.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QSignalBlocker>
#include <QStandardPaths>
#include <QTreeWidget>
#include <algorithm>

namespace mirel {

FolderScreen::FolderScreen(SkinHost& host, EmailScreen& email, MailStore& store,
                           MessageSink& messages, const LayoutEngine& engine, FolderNames names)
    : m_host(host), m_email(email), m_store(store), m_messages(messages), m_engine(engine),
      m_names(std::move(names)), m_folders(store, messages), m_label(new QLabel(&host)),
      m_chooser(new QComboBox(&host)) {
    m_label->setObjectName(QStringLiteral("lblFolder"));
    m_label->setTextFormat(Qt::PlainText); // a user folder's name is shown as typed
    m_label->hide();
    host.setSpecial("emailfolder", m_label);
    m_chooser->setObjectName(QStringLiteral("cboFolders"));
    m_chooser->setAccessibleName(QStringLiteral("Mail folder"));
    m_chooser->hide();
    host.setSpecial("emailfolders", m_chooser);
    connect(m_chooser, &QComboBox::activated, this,
            [this](int i) { openFolder(m_chooser->itemData(i).toByteArray()); });

    email.MLmessages()->installEventFilter(this);
    // Activation is a double click, or Enter on the attachment in focus.
    connect(email.lvAttachments(), &QListWidget::itemActivated, this,
            [this] { SaveSelectedAttachments(); });

    m_chooseTarget = [this](const QList<QByteArray>& folders, QByteArrayView current) {
        frmMove dialog(m_engine, m_names, folders, current, m_messages, &m_host);
        dialog.exec();
        return dialog.result();
    };
    m_chooseSave = [this](const QString& proposed, const QString& filter) {
        if (m_saveDir.isEmpty() || !QDir(m_saveDir).exists())
            m_saveDir = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
        if (!QDir(m_saveDir).exists())
            m_saveDir = QDir::homePath();
        const QString path = QFileDialog::getSaveFileName(
            &m_host, QStringLiteral("Save attachment"), QDir(m_saveDir).filePath(proposed), filter);
        if (!path.isEmpty())
            m_saveDir = QFileInfo(path).absolutePath();
        return path;
    };
}

FolderScreen::~FolderScreen() = default;

bool FolderScreen::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_email.MLmessages() && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete && m_run) {
        m_run("EMAILDELETE");
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void FolderScreen::ShowEmailScreen() {
    m_email.ShowEmailScreen();
    nameFolder();
}

void FolderScreen::nameFolder() {
    const QByteArray current = m_email.view().currentFolder();
    const QString name = Cp1252::toUnicode(m_names.displayName(current));
    m_label->setText(name);
    m_label->setAccessibleName(QStringLiteral("Folder: ") + name);

    const QSignalBlocker block(m_chooser);
    m_chooser->clear();
    for (const QByteArray& key : m_folders.allFolders()) {
        m_chooser->addItem(Cp1252::toUnicode(m_names.displayName(key)), key);
        if (key == current)
            m_chooser->setCurrentIndex(m_chooser->count() - 1);
    }
}

void FolderScreen::openFolder(const QByteArray& key) {
    m_email.setCurrentFolder(key);
    if (m_host.state().currentScreen == "Email")
        ShowEmailScreen();
}

QList<int> FolderScreen::selectedRows() const {
    QList<int> rows;
    const QTreeWidget* list = m_email.MLmessages();
    for (QTreeWidgetItem* item : list->selectedItems())
        rows.append(list->indexOfTopLevelItem(item));
    std::sort(rows.begin(), rows.end());
    return rows;
}

void FolderScreen::removeRows(const QList<int>& rows) {
    QTreeWidget* list = m_email.MLmessages();
    {
        // Taking rows away moves the selection to a neighbour; that must not
        // open (and mark read) the message there.
        const QSignalBlocker block(list);
        for (auto it = rows.crbegin(); it != rows.crend(); ++it)
            delete list->takeTopLevelItem(*it);
        list->clearSelection();
        list->setCurrentItem(nullptr);
    }
    m_email.view().setShownRow(-1);
    m_email.ClearMessageView();
}

void FolderScreen::tell(const QString& text) {
    m_messages.showMessage(text, kMessageTitle, MessageSink::Icon::Information);
}

void FolderScreen::MoveSelectedMessages() {
    const QList<int> rows = selectedRows();
    if (rows.isEmpty()) {
        tell(QStringLiteral("Please select the messages to move first."));
        return;
    }
    const QByteArray folder = m_email.view().currentFolder();
    const QByteArray chosen = m_chooseTarget(m_folders.allFolders(), folder);
    if (chosen.isEmpty())
        return;
    SelectedMessages selection(m_store, folder, m_email.ListMessages());
    removeRows(selection.move(rows, m_names.keyOf(chosen)));
}

void FolderScreen::DeleteSelectedMessages() {
    const QList<int> rows = selectedRows();
    if (rows.isEmpty() ||
        !m_messages.askYesNo(SelectedMessages::deleteQuestion(rows.size()), kMessageTitle))
        return;
    SelectedMessages selection(m_store, m_email.view().currentFolder(), m_email.ListMessages());
    removeRows(selection.remove(rows));
}

void FolderScreen::SaveSelectedAttachments() {
    const QByteArray folder = m_email.view().currentFolder();
    const qint32 id = m_email.view().current().id;
    // Taken before any dialog opens: the list may change while one is up.
    QList<std::pair<int, QString>> chosen;
    const QListWidget* items = m_email.lvAttachments();
    for (int i = 0; i < items->count(); ++i)
        if (items->item(i)->isSelected())
            chosen.append({i, items->item(i)->toolTip()});

    for (const auto& [index, fullName] : chosen) {
        const QString path = m_chooseSave(AttachmentFile::proposedName(fullName),
                                          AttachmentFile::saveFilter(fullName));
        if (path.isEmpty())
            return;
        const std::vector<AttachmentRow> rows = m_store.readAttachments(folder, id);
        if (size_t(index) >= rows.size())
            continue;
        if (rows[size_t(index)].data.isEmpty()) {
            tell(QStringLiteral("The attachment \"%1\" holds no data; nothing was saved.")
                     .arg(fullName));
            return;
        }
        QString error;
        if (!AttachmentFile::WriteAttachmentFile(rows[size_t(index)].data, path, &error)) {
            m_messages.showMessage(QStringLiteral("The attachment could not be saved to\n%1\n%2")
                                       .arg(QDir::toNativeSeparators(path), error),
                                   kMessageTitle, MessageSink::Icon::Warning);
            return;
        }
    }
}

void FolderScreen::FolderManagerDialog() {
    frmEmailConfig dialog(m_engine, m_folders, m_messages, &m_host);
    dialog.setRetarget([this](const QByteArray& from, const QByteArray& to) {
        if (m_email.view().currentFolder() == from)
            openFolder(to);
    });
    dialog.exec();
    nameFolder(); // the chooser offers the folders as they are now
}

} // namespace mirel
