#include "ui/frmQuestion.h"

#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/SoundPlayer.h"

#include <QLabel>

namespace mirel {
namespace {

const QByteArray kSection = QByteArrayLiteral("QUESTION");

} // namespace

frmQuestion::frmQuestion(const LayoutEngine& engine, const QString& title, const QString& text,
                         QWidget* parent)
    : SkinDialog(engine, kSection, title, parent), m_text(new QLabel(this)) {
    m_text->setObjectName(QStringLiteral("lblQuestion"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // The fingerprint or command line may be worth copying elsewhere.
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_text->setText(text);
    m_text->setAccessibleName(title);
    m_text->setAccessibleDescription(text);

    layOut(QSize(460, 240));
    IniHelpers& ini = context().ini;
    if (ini.ReadIniKey(kSection, "TextBox", skinFile())) {
        applyBox(m_text, ini.IniValue);
    } else {
        m_text->setGeometry(12, 12, width() - 24, height() - 60);
    }
    m_text->setAutoFillBackground(true);
    m_text->raise();
    shapeAndHover();
}

frmQuestion::~frmQuestion() = default;

void frmQuestion::buttonClicked(int index) {
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    const QByteArray command = b.command.toUpper();
    // Nothing else runs from here: this dialog guards what may run.
    if (command == "OK" || command == "QUIT") {
        m_accepted = command == "OK";
        finish();
    }
}

bool frmQuestion::ask(const LayoutEngine& engine, QWidget* parent, const QString& title,
                      const QString& text) {
    frmQuestion dialog(engine, title, text, parent);
    dialog.exec();
    return dialog.accepted();
}

} // namespace mirel
