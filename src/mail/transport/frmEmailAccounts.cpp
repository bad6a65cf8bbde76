#include "mail/transport/frmEmailAccounts.h"

#include "mail/transport/AccountsFile.h"
#include "platform/Cp1252.h"
#include "platform/MessageSink.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/SoundPlayer.h"
#include "ui/WindowLook.h"

#include <QCheckBox>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QSignalBlocker>

namespace mirel {
namespace {

const QString kNamePrompt = QStringLiteral("Enter Name for account");
const QString kNamePreset = QStringLiteral("New Account");
const QString kDeleteQuestion = QStringLiteral("Are you sure to delete this Account?");

QByteArray bytesOf(const QLineEdit* e) {
    return Cp1252::fromUnicode(e->text());
}

} // namespace

frmEmailAccounts::frmEmailAccounts(const LayoutEngine& engine, EmailAccountList& accounts,
                                   const AccountsFile& file, MessageSink& messages, QWidget* parent)
    : SkinDialog(engine, kSection, QStringLiteral("E-mail accounts"), parent), m_accounts(accounts),
      m_file(file), m_messages(messages), m_manager(accounts) {
    m_prompt = [this](const QString& prompt, const QString& title, const QString& preset) {
        QInputDialog ask(this);
        WindowLook::apply(&ask);
        ask.setWindowTitle(title);
        ask.setLabelText(prompt);
        ask.setTextValue(preset);
        return ask.exec() == QDialog::Accepted ? Cp1252::fromUnicode(ask.textValue())
                                               : QByteArray();
    };

    // The ML line places the account list; a plain list serves it here.
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("MLmessages"));
    m_list->setAccessibleName(QStringLiteral("Accounts"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->hide();
    setPlaced(PlacedPart::MessageList, m_list);

    layOut(QSize(660, 460));

    // A skin that leaves a box out still gets one, hidden: the record keeps
    // its field either way.
    const std::pair<TextBox, const char*> boxes[] = {
        {Name, "emailtextname"}, {Email, "emailtextemail"}, {User, "emailtextuser"},
        {Pass, "emailtextpass"}, {Pop3, "emailtextpop3"},   {Smtp, "emailtextsmtp"}};
    const char* const names[] = {"Sender name", "E-mail address", "User name",
                                 "Password",    "POP3 server",    "SMTP server"};
    for (const auto& [box, key] : boxes) {
        m_text[box] = qobject_cast<QLineEdit*>(special(key));
        m_text[box]->setAccessibleName(QString::fromLatin1(names[box]));
    }
    m_text[Pass]->setEchoMode(QLineEdit::Password);
    m_hostDelete = qobject_cast<QCheckBox*>(special("emailhostdelete"));
    m_hostDelete->setAccessibleName(QStringLiteral("Delete mail from the server"));
    m_autorize = qobject_cast<QCheckBox*>(special("emailhostauto"));
    m_autorize->setAccessibleName(QStringLiteral("SMTP log-in"));

    fillList();

    for (QLineEdit* e : m_text)
        connect(e, &QLineEdit::textChanged, this, [this] { storeEdit(); });
    for (QCheckBox* c : {m_hostDelete, m_autorize})
        connect(c, &QCheckBox::toggled, this, [this] { storeEdit(); });
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) { rowChanged(row); });

    shapeAndHover();
}

frmEmailAccounts::~frmEmailAccounts() = default;

void frmEmailAccounts::fillList() {
    m_list->clear();
    for (const QByteArray& row : m_manager.rows())
        addRow(row);
    const qsizetype initial = m_manager.initialRow();
    m_list->setCurrentRow(int(initial));
    rowChanged(int(initial));
}

void frmEmailAccounts::addRow(const QByteArray& text) {
    auto* item = new QListWidgetItem(Cp1252::toUnicode(text), m_list);
    // Rows take the list's own colours, so a theme's list looks the same
    // whatever the style would draw for an item.
    item->setForeground(m_list->palette().color(QPalette::Text));
    item->setBackground(m_list->palette().color(QPalette::Base));
}

void frmEmailAccounts::rowChanged(int row) {
    showSettings(m_manager.select(row));
}

void frmEmailAccounts::showSettings(const AccountRecord::Settings& s) {
    m_loading = true;
    m_text[Pop3]->setText(Cp1252::toUnicode(s.pop3Server));
    m_text[User]->setText(Cp1252::toUnicode(s.userName));
    m_text[Pass]->setText(Cp1252::toUnicode(s.password));
    m_hostDelete->setChecked(s.deleteFromServer);
    m_autorize->setChecked(s.smtpLogin);
    m_text[Smtp]->setText(Cp1252::toUnicode(s.smtpServer));
    m_text[Email]->setText(Cp1252::toUnicode(s.address));
    m_text[Name]->setText(Cp1252::toUnicode(s.senderName));
    m_loading = false;
}

void frmEmailAccounts::storeEdit() {
    if (m_loading)
        return;
    AccountRecord::Settings s;
    s.pop3Server = bytesOf(m_text[Pop3]);
    s.userName = bytesOf(m_text[User]);
    s.password = bytesOf(m_text[Pass]);
    s.deleteFromServer = m_hostDelete->isChecked();
    s.smtpLogin = m_autorize->isChecked();
    s.smtpServer = bytesOf(m_text[Smtp]);
    s.address = bytesOf(m_text[Email]);
    s.senderName = bytesOf(m_text[Name]);
    m_manager.edit(s);
}

void frmEmailAccounts::buttonClicked(int index) {
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    runCommand(b.command);
}

void frmEmailAccounts::runCommand(const QByteArray& command) {
    // A failing command only ends the click; the window stays usable.
    try {
        const QByteArray upper = command.toUpper();
        if (upper == "OK") {
            m_saved = m_file.SaveAccounts(m_accounts);
            finish();
        } else if (upper == "EMAILACCOUNTNEW") {
            newAccount();
        } else if (upper == "EMAILACCOUNTDEFAULT") {
            makeDefault();
        } else if (upper == "EMAILACCOUNTDELETE") {
            deleteAccount();
        } else {
            startProgram(command);
        }
    } catch (const std::exception&) {
    }
}

void frmEmailAccounts::newAccount() {
    const QByteArray name = m_prompt ? m_prompt(kNamePrompt, kMessageTitle, kNamePreset) : "";
    const qsizetype row = m_manager.addNew(name);
    if (row < 0)
        return;
    addRow(m_manager.rows().at(row));
    m_list->setCurrentRow(int(row));
}

void frmEmailAccounts::makeDefault() {
    if (!m_manager.makeDefault())
        return;
    const QList<QByteArray> rows = m_manager.rows();
    for (int i = 0; i < m_list->count() && i < rows.size(); ++i)
        m_list->item(i)->setText(Cp1252::toUnicode(rows.at(i)));
}

void frmEmailAccounts::deleteAccount() {
    const qsizetype row = m_manager.selected();
    if (row < 0 || !m_messages.askYesNo(kDeleteQuestion, kMessageTitle))
        return;
    m_manager.deleteSelected();
    {
        // Taking the row away would move the list's current row to a
        // neighbour; the selection is cleared instead.
        const QSignalBlocker block(m_list);
        delete m_list->takeItem(int(row));
        m_list->setCurrentRow(-1);
        m_list->clearSelection();
    }
    showSettings({});
}

void frmEmailAccounts::keyPressEvent(QKeyEvent* event) {
    // The skin offers only "OK"; Escape leaves without writing the file
    // (the list itself already holds every change, as the window promises).
    if (event->key() == Qt::Key_Escape) {
        finish();
        return;
    }
    SkinHost::keyPressEvent(event);
}


} // namespace mirel
