#include "mail/transport/frmEmailSendReceive.h"

#include "mail/transport/SendReceiveRunner.h"
#include "mail/transport/SendReceiveTexts.h"
#include "mail/transport/ServerTrust.h"
#include "platform/Cp1252.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/SoundPlayer.h"
#include "ui/frmQuestion.h"

#include <QListWidget>
#include <QPushButton>

namespace mirel {

frmEmailSendReceive::frmEmailSendReceive(const LayoutEngine& engine, MailStore& store,
                                         const Clock& clock, const EmailAccountList& accounts,
                                         const DebugLog* debugLog, QWidget* parent)
    : SkinDialog(engine, SendReceiveTexts::kSection, QStringLiteral("Send and receive"), parent),
      m_status(new QListWidget(this)), m_cmdFake(new QPushButton(this)) {
    const SkinContext& ctx = context();
    m_status->setObjectName(QStringLiteral("MLmessages"));
    m_status->setAccessibleName(QStringLiteral("Status"));
    m_status->setFocusPolicy(Qt::NoFocus);
    m_status->setFrameShape(QFrame::NoFrame);
    // Error lines carry the server's own words and can be long: they wrap
    // rather than bring up a scroll bar the skin does not style.
    m_status->setWordWrap(true);
    m_status->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setPlaced(PlacedPart::MessageList, m_status);
    // Keeps the keyboard focus away from the list, where it would draw a
    // focus rectangle over the newest line.
    m_cmdFake->setObjectName(QStringLiteral("cmdFake"));
    m_cmdFake->setGeometry(-100, 0, 10, 10);

    layOut(QSize(540, 360));
    shapeAndHover();

    // The newest line is selected only to scroll it into view; it must look
    // like every other line.
    QPalette pal = m_status->palette();
    pal.setColor(QPalette::Highlight, pal.color(QPalette::Base));
    pal.setColor(QPalette::HighlightedText, pal.color(QPalette::Text));
    m_status->setPalette(pal);

    m_runner = std::make_unique<SendReceiveRunner>(
        store, ctx.ini, clock, accounts, SendReceiveTexts::read(ctx.ini, skinFile()), debugLog);
    m_runner->setServerTrust(
        ctx.folders.path(ServerTrust::kLiteral), [this](const QString& title, const QString& text) {
            // Asked over this window, which shows the run: never a question
            // nobody sees.
            return isVisible() && frmQuestion::ask(this->engine(), this, title, text);
        });
    connect(m_runner.get(), &SendReceiveRunner::statusLine, this,
            &frmEmailSendReceive::StatusUpdate);
    connect(m_runner.get(), &SendReceiveRunner::soundRequested, this, [this](const QByteArray& s) {
        if (SoundPlayer* sounds = soundPlayer())
            sounds->PlaySkinSound(s, false);
    });
    connect(m_runner.get(), &SendReceiveRunner::over, this, [this] { startHoverTimer(); });
}

frmEmailSendReceive::~frmEmailSendReceive() {
    m_runner->close();
}

void frmEmailSendReceive::StatusUpdate(const QByteArray& text) {
    auto* item = new QListWidgetItem(Cp1252::toUnicode(text), m_status);
    m_status->setCurrentItem(item);
    m_status->scrollToItem(item);
    m_cmdFake->setFocus();
}

void frmEmailSendReceive::onShown() {
    m_runner->open();
}

void frmEmailSendReceive::onFinish() {
    // Closing never waits on the network for long: a running action is
    // aborted, and errors while logging out are of no interest any more.
    m_runner->close();
}

void frmEmailSendReceive::buttonClicked(int index) {
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    if (b.command.toUpper() == "OK")
        finish();
    else
        startProgram(b.command);
}

} // namespace mirel
