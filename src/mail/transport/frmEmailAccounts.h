#pragma once
// The account manager window. Its controls come from section
// "EMAILACCOUNTS" of terminal.skn; the rules it applies live in
// AccountManager, so this class only moves values between the widgets and
// the shared account list.
//
// While a row's values are being put into the boxes, the boxes' change
// signals are not turned into edits: otherwise clearing the boxes for the
// new row would first overwrite that row with empty fields.
#include "mail/transport/AccountManager.h"
#include "ui/SkinDialog.h"

#include <QByteArray>
#include <array>
#include <functional>
#include <memory>
#include <optional>

class QCheckBox;
class QLineEdit;
class QListWidget;

namespace mirel {

class AccountsFile;
class LayoutEngine;
class MessageSink;

/// frmEmailAccounts: creates, edits, marks and deletes accounts in the shared
/// list at once, and writes the file on "OK".
class frmEmailAccounts : public SkinDialog {
    Q_OBJECT
public:
    static inline const QByteArray kSection = QByteArrayLiteral("EMAILACCOUNTS");

    frmEmailAccounts(const LayoutEngine& engine, EmailAccountList& accounts,
                     const AccountsFile& file, MessageSink& messages, QWidget* parent = nullptr);
    ~frmEmailAccounts() override;

    /// True once "OK" wrote the file without an error.
    bool saved() const { return m_saved; }

    /// Asks for a new account's name (prompt, title, preset); the answer in
    /// Windows-1252, empty for Cancel. By default the toolkit's input box.
    using NamePrompt = std::function<QByteArray(const QString& prompt, const QString& title,
                                                const QString& preset)>;
    void setNamePrompt(NamePrompt prompt) { m_prompt = std::move(prompt); }

    QListWidget* MLmessages() const { return m_list; }
    QLineEdit* txtName() const { return m_text[Name]; }
    QLineEdit* txtEmail() const { return m_text[Email]; }
    QLineEdit* txtUser() const { return m_text[User]; }
    QLineEdit* txtPass() const { return m_text[Pass]; }
    QLineEdit* txtPOP3() const { return m_text[Pop3]; }
    QLineEdit* txtSmtp() const { return m_text[Smtp]; }
    QCheckBox* CheckHostDelete() const { return m_hostDelete; }
    QCheckBox* CheckAutorize() const { return m_autorize; }

    void buttonClicked(int index) override;
    /// Runs one command as a skin button would (without its sound).
    void runCommand(const QByteArray& command);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum TextBox { Name, Email, User, Pass, Pop3, Smtp, TextBoxCount };

    void fillList();
    void addRow(const QByteArray& text);
    void rowChanged(int row);
    void showSettings(const AccountRecord::Settings& s);
    void storeEdit();
    void newAccount();
    void makeDefault();
    void deleteAccount();

    EmailAccountList& m_accounts;
    const AccountsFile& m_file;
    MessageSink& m_messages;
    AccountManager m_manager;
    QListWidget* m_list = nullptr;
    std::array<QLineEdit*, TextBoxCount> m_text{};
    QCheckBox* m_hostDelete = nullptr;
    QCheckBox* m_autorize = nullptr;
    bool m_loading = false;
    bool m_saved = false;
    // Where the pointer took hold of the background, while it is dragged.
    NamePrompt m_prompt;
};

} // namespace mirel
