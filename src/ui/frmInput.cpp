#include "ui/frmInput.h"

#include "platform/Cp1252.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/SoundPlayer.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProxyStyle>

namespace mirel {
namespace {

const QByteArray kSection = QByteArrayLiteral("INPUT");

// Password fields of the skins show "#" for every character rather than the
// style's bullet.
class HashEchoStyle : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* ret) const override {
        if (hint == SH_LineEdit_PasswordCharacter)
            return '#';
        return QProxyStyle::styleHint(hint, option, widget, ret);
    }
};

} // namespace

frmInput::frmInput(const LayoutEngine& engine, bool passwordMode, QWidget* parent)
    : SkinDialog(engine, kSection,
                 passwordMode ? QStringLiteral("Password") : QStringLiteral("Input"), parent),
      m_input(new QLineEdit(this)) {
    m_input->setObjectName(QStringLiteral("txtInput"));
    m_input->setAccessibleName(windowTitle());
    if (passwordMode) {
        m_input->setEchoMode(QLineEdit::Password);
        auto* style = new HashEchoStyle;
        style->setParent(m_input);
        m_input->setStyle(style);
    }
    m_input->installEventFilter(this);
    watchHover(m_input);

    layOut(QSize(320, 120));
    IniHelpers& ini = context().ini;
    if (ini.ReadIniKey(kSection, "InputBox", skinFile()))
        applyBox(m_input, ini.IniValue);
    else
        m_input->setGeometry(10, 10, width() - 20, 24);
    m_input->raise();
    shapeAndHover();
}

frmInput::~frmInput() = default;

void frmInput::setPrompt(const QString& title, const QString& prompt, const QByteArray& proposal) {
    setWindowTitle(title);
    setAccessibleName(title); // screen readers name the window by it
    m_input->setAccessibleName(prompt);
    m_input->setText(Cp1252::toUnicode(proposal));
    if (!m_prompt) {
        m_prompt = new QLabel(this);
        m_prompt->setObjectName(QStringLiteral("lblPrompt"));
        m_prompt->setTextFormat(Qt::PlainText);
        IniHelpers& ini = context().ini;
        // Without a place of its own the prompt sits just above the box.
        const QRect box = m_input->geometry();
        if (ini.ReadIniKey(kSection, "PromptBox", skinFile()))
            applyBox(m_prompt, ini.IniValue);
        else
            m_prompt->setGeometry(box.left(), box.top() - 20, box.width(), 18);
    }
    m_prompt->setText(prompt);
    m_prompt->show();
}

void frmInput::onShown() {
    m_input->setFocus();
}

void frmInput::setPrompt(const QString& prompt, const QByteArray& preset) {
    setPrompt(prompt, prompt, preset);
    m_input->selectAll();
}

void frmInput::confirm() {
    m_result = Cp1252::fromUnicode(m_input->text());
    finish();
}

void frmInput::buttonClicked(int index) {
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    const QByteArray command = b.command.toUpper();
    if (command == "OK")
        confirm();
    else if (command == "QUIT")
        finish();
    else
        startProgram(b.command);
}

bool frmInput::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_input && event->type() == QEvent::KeyRelease) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            confirm();
            return true;
        }
    }
    return SkinHost::eventFilter(watched, event);
}

} // namespace mirel
