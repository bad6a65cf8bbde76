#include "mail/store/frmEmailConfig.h"

#include "mail/store/FolderManager.h"
#include "mail/store/MailStore.h"
#include "ui/frmInput.h"

#include <QListWidget>

namespace mirel {
namespace {

const QString kNamePrompt = QStringLiteral("Enter Name for new Folder");
const QByteArray kNamePreset = QByteArrayLiteral("New Folder");
const QString kDeleteQuestion =
    QStringLiteral("Are you sure to delete this folder with all messages inside?");

} // namespace

frmEmailConfig::frmEmailConfig(const LayoutEngine& engine, FolderManager& folders,
                               MessageSink& messages, QWidget* parent)
    : FolderListDialog(engine, kSection, QStringLiteral("Mail folders"), "OK", QSize(420, 400),
                       parent),
      m_folders(folders), m_messages(messages) {
    m_prompt = [this](const QString& prompt, const QByteArray& preset) {
        frmInput input(this->engine(), false, this);
        input.setPrompt(prompt, preset);
        input.exec();
        return input.InputResult();
    };
    fillRows(m_folders.userFolders());
}

void frmEmailConfig::runCommand(const QByteArray& command) {
    const QByteArray upper = command.toUpper();
    if (upper == "OK")
        finish();
    else if (upper == "EMAILCONFIGNEW")
        create();
    else if (upper == "EMAILCONFIGRENAME")
        rename();
    else if (upper == "EMAILCONFIGDELETE")
        remove();
    else
        startProgram(command);
}

bool frmEmailConfig::haveSelection(QByteArray& name) {
    name = selectedRow();
    if (name.isEmpty())
        m_messages.showMessage(QStringLiteral("Please choose a folder in the list first."),
                               kMessageTitle, MessageSink::Icon::Information);
    return !name.isEmpty();
}

void frmEmailConfig::create() {
    const QByteArray name = m_prompt(kNamePrompt, kNamePreset);
    if (name.isEmpty())
        return;
    const QByteArray made = m_folders.create(name);
    if (!made.isEmpty())
        fillRows(m_folders.userFolders(), made);
}

void frmEmailConfig::rename() {
    QByteArray old;
    if (!haveSelection(old))
        return;
    const QByteArray name = m_prompt(kNamePrompt, old);
    if (name.isEmpty())
        return;
    const QByteArray renamed = m_folders.rename(old, name);
    if (renamed.isEmpty())
        return;
    fillRows(m_folders.userFolders(), renamed);
    if (m_retarget)
        m_retarget(old, renamed);
}

void frmEmailConfig::remove() {
    QByteArray name;
    if (!haveSelection(name) || !m_messages.askYesNo(kDeleteQuestion, kMessageTitle))
        return;
    // The screen leaves the folder before its files go.
    if (m_retarget)
        m_retarget(name, MailStore::kInbox);
    m_folders.remove(name);
    fillRows(m_folders.userFolders());
}

} // namespace mirel
