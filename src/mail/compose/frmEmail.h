#pragma once
// The compose window. Its controls come from section "EMAILSEND" of
// terminal.skn; it reads the compose presets when it opens and, on "OK",
// hands the message to the outgoing storage, which puts it in the outbox.
// The rules (presets, date, accounts) live in ComposeRules and the document
// serialisation in frmEmailHtml; this class moves values between widgets.
//
// The editor never loads anything on its own: a quoted message's pictures
// and links stay text, so a stranger's mail cannot make it read a file.
#include "mail/compose/ComposePresets.h"
#include "ui/SkinDialog.h"

#include <QColor>
#include <QTimeZone>
#include <QTimer>
#include <array>
#include <functional>
#include <optional>

class QComboBox;
class QFontComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTextEdit;

namespace mirel {

class MailStore;
class MessageSink;
class frmMenu;

/// frmEmail: edits one message and stores it in the outbox on "OK".
class frmEmail : public SkinDialog {
    Q_OBJECT
public:
    static inline const QByteArray kSection = QByteArrayLiteral("EMAILSEND");
    static constexpr int kToolCount = 17;

    frmEmail(const LayoutEngine& engine, const EmailAccountList& accounts,
             const ComposePresets& presets, MailStore& store, MessageSink& messages,
             QWidget* parent = nullptr);
    ~frmEmail() override;

    /// True once "OK" stored the message.
    bool sent() const { return m_sent; }

    // What the window asks the user; by default the toolkit's dialogs.
    void setFilePrompt(std::function<QString()> p) { m_filePrompt = std::move(p); }
    void setColourPrompt(std::function<std::optional<QColor>()> p) {
        m_colourPrompt = std::move(p);
    }
    void setTextPrompt(std::function<QString(const QString& prompt, const QString& preset)> p) {
        m_textPrompt = std::move(p);
    }
    /// The address picker; returns the picked text, empty for none.
    void setPicker(std::function<QByteArray()> p) { m_picker = std::move(p); }
    void setClock(std::function<QDateTime()> now, QTimeZone zone) {
        m_now = std::move(now);
        m_zone = std::move(zone);
    }

    QComboBox* AccountCombo() const { return m_account; }
    QLineEdit* txtTO() const { return m_to; }
    QLineEdit* txtCC() const { return m_cc; }
    QLineEdit* txtBCC() const { return m_bcc; }
    QLineEdit* txtSubject() const { return m_subject; }
    QFontComboBox* FontCombo() const { return m_font; }
    QComboBox* FontSizeCombo() const { return m_size; }
    QPushButton* cmdBut(int i) const { return m_tools.at(size_t(i)); }
    QTextEdit* DHTMLEdit1() const { return m_edit; }
    QListWidget* lvAttachments() const { return m_attachments; }
    frmMenu* formatMenu() const { return m_menu; }

    void buttonClicked(int index) override;
    /// Runs one command as a skin button would (without its sound).
    void runCommand(const QByteArray& command);
    /// What a click on toolbar element i does.
    void toolbar(int i);
    /// Adds a file unless an item already names the same path.
    void addAttachment(const QString& path);
    /// Applies a paragraph format by its menu caption.
    void applyFormat(const QString& caption);
    /// The caption of the paragraph format at the caret.
    QString currentFormat() const;
    /// Sets every toolbar button's enabled and latched state from the caret.
    void updateToolbar();

protected:
    void onShown() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setUpControls(const ComposePresets& presets, const EmailAccountList& accounts);
    void setUpToolbar();
    void setUpEditor(const ComposePresets& presets);
    void setEditorDefaults();
    void send();
    void quit();
    void pick(QLineEdit* box);
    void toggleList(int style);
    void indent(int step);
    void insertLink();
    void insertImage();
    void chooseColour();
    void setLatched(int tool, bool enabled, bool latched);
    QString litPicture(int tool) const;

    const EmailAccountList& m_accounts;
    MailStore& m_store;
    MessageSink& m_messages;
    QComboBox* m_account = nullptr;
    QLineEdit* m_to = nullptr;
    QLineEdit* m_cc = nullptr;
    QLineEdit* m_bcc = nullptr;
    QLineEdit* m_subject = nullptr;
    QFontComboBox* m_font = nullptr;
    QComboBox* m_size = nullptr;
    std::array<QPushButton*, kToolCount> m_tools{};
    QTextEdit* m_edit = nullptr;
    QListWidget* m_attachments = nullptr;
    frmMenu* m_menu = nullptr;
    QTimer m_timer1;
    QByteArray m_presetSubject;
    QRect m_placement;
    bool m_sent = false;
    std::function<QString()> m_filePrompt;
    std::function<std::optional<QColor>()> m_colourPrompt;
    std::function<QString(const QString&, const QString&)> m_textPrompt;
    std::function<QByteArray()> m_picker;
    std::function<QDateTime()> m_now;
    QTimeZone m_zone;
};

} // namespace mirel
