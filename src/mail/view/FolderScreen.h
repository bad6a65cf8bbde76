#pragma once
// The folder side of the e-mail screen: which folder is shown (a label and
// a chooser the skin places with the SP lines "emailfolder" and
// "emailfolders"), and the commands that act on what is selected in it:
// moving and deleting messages, saving attachments, the folder manager.
// The rules live in FolderManager, SelectedMessages and AttachmentFile;
// this class asks the user and moves the results into the widgets.
#include "mail/store/FolderManager.h"

#include <QByteArray>
#include <QObject>
#include <functional>

class QComboBox;
class QLabel;

namespace mirel {

class EmailScreen;
class LayoutEngine;
class MailStore;
class MessageSink;
class SkinHost;

/// MoveSelectedMessages, DeleteSelectedMessages, SaveSelectedAttachments,
/// the folder manager and the current folder's name on the e-mail screen.
class FolderScreen : public QObject {
    Q_OBJECT
public:
    FolderScreen(SkinHost& host, EmailScreen& email, MailStore& store, MessageSink& messages,
                 const LayoutEngine& engine, FolderNames names);
    ~FolderScreen() override;

    /// Where the Delete key of the message list sends "EMAILDELETE".
    void setCommandRunner(std::function<void(const QByteArray&)> run) { m_run = std::move(run); }
    /// Picks the target of a move (folder keys offered, current key);
    /// returns a display name, empty for none. By default the move dialog.
    using TargetChooser = std::function<QByteArray(const QList<QByteArray>&, QByteArrayView)>;
    void setTargetChooser(TargetChooser choose) { m_chooseTarget = std::move(choose); }
    /// Picks the file an attachment is saved to (proposed name, filter);
    /// empty for Cancel. By default the desktop's Save As dialog.
    using SaveChooser = std::function<QString(const QString&, const QString&)>;
    void setSaveChooser(SaveChooser choose) { m_chooseSave = std::move(choose); }

    /// Fills the e-mail screen for the current folder and names it.
    void ShowEmailScreen();
    /// Makes key the current folder, and shows it when the screen is up.
    void openFolder(const QByteArray& key);

    void MoveSelectedMessages();
    void DeleteSelectedMessages();
    void SaveSelectedAttachments();
    /// Runs the folder manager; a folder on show that goes or is renamed
    /// is followed on the screen.
    void FolderManagerDialog();

    QLabel* lblFolder() const { return m_label; }
    QComboBox* cboFolders() const { return m_chooser; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// The label and the chooser show the current folder.
    void nameFolder();
    QList<int> selectedRows() const;
    void removeRows(const QList<int>& rows);
    void tell(const QString& text);

    SkinHost& m_host;
    EmailScreen& m_email;
    MailStore& m_store;
    MessageSink& m_messages;
    const LayoutEngine& m_engine;
    FolderNames m_names;
    FolderManager m_folders;
    QLabel* m_label;
    QComboBox* m_chooser;
    std::function<void(const QByteArray&)> m_run;
    TargetChooser m_chooseTarget;
    SaveChooser m_chooseSave;
    QString m_saveDir;
};

} // namespace mirel
