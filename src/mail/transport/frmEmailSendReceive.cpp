#include "mail/transport/frmEmailSendReceive.h"

#include "mail/transport/SendReceiveRunner.h"
#include "mail/transport/SendReceiveTexts.h"
#include "platform/Cp1252.h"
#include "settings/CommaList.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/ShapeWindow.h"
#include "ui/SoundPlayer.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QScreen>

namespace mirel {

frmEmailSendReceive::frmEmailSendReceive(const LayoutEngine& engine, MailStore& store,
                                         const Clock& clock, const EmailAccountList& accounts,
                                         const DebugLog* debugLog, QWidget* parent)
    : SkinHost(parent, Qt::Dialog | Qt::FramelessWindowHint),
      m_engine(std::make_unique<LayoutEngine>(engine.context())), m_status(new QListWidget(this)),
      m_cmdFake(new QPushButton(this)) {
    const SkinContext& ctx = m_engine->context();
    const QString skin = ctx.folders.themeFile(QStringLiteral("terminal.skn"));
    const QByteArray section = SendReceiveTexts::kSection;
    setSoundPlayer(ctx.sounds);
    setWindowTitle(QStringLiteral("Send and receive"));
    setAccessibleName(windowTitle());
    setAttribute(Qt::WA_DeleteOnClose, false);
    m_run = [dir = ctx.folders.ProgramDir](const QByteArray& command) {
        QStringList args = QProcess::splitCommand(Cp1252::toUnicode(command));
        if (!args.isEmpty())
            QProcess::startDetached(args.takeFirst(), args, dir);
    };

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

    QImage background;
    if (ctx.ini.ReadIniKey(section, "BackGround", skin) && !ctx.ini.IniValue.isEmpty())
        background = QImage(ctx.folders.themeFile(Cp1252::toUnicode(ctx.ini.IniValue)));
    QRgb mask = qRgb(255, 0, 255);
    if (ctx.ini.ReadIniKey(section, "MaskColor", skin)) {
        const Rgb c = parseRgb(ctx.ini.IniValue);
        mask = qRgb(c.r, c.g, c.b);
    }
    resize(background.isNull() ? QSize(540, 360) : background.size());
    m_engine->readAnimation("STARTUP", skin);
    m_engine->LayoutSection(*this, section, skin);
    ShapeWindow(this, background, mask);

    // The newest line is selected only to scroll it into view; it must look
    // like every other line.
    QPalette pal = m_status->palette();
    pal.setColor(QPalette::Highlight, pal.color(QPalette::Base));
    pal.setColor(QPalette::HighlightedText, pal.color(QPalette::Text));
    m_status->setPalette(pal);

    m_runner = std::make_unique<SendReceiveRunner>(store, ctx.ini, clock, accounts,
                                                   SendReceiveTexts::read(ctx.ini, skin), debugLog);
    connect(m_runner.get(), &SendReceiveRunner::statusLine, this,
            &frmEmailSendReceive::StatusUpdate);
    connect(m_runner.get(), &SendReceiveRunner::soundRequested, this, [this](const QByteArray& s) {
        if (SoundPlayer* sounds = soundPlayer())
            sounds->PlaySkinSound(s, false);
    });
    connect(m_runner.get(), &SendReceiveRunner::over, this, [this] { startHoverTimer(); });
    startHoverTimer();
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

void frmEmailSendReceive::exec() {
    setWindowModality(Qt::ApplicationModal);
    if (QWidget* p = parentWidget())
        move(p->mapToGlobal(p->rect().center()) - rect().center());
    else if (QScreen* s = QGuiApplication::primaryScreen())
        move(s->availableGeometry().center() - rect().center());
    show();
    m_runner->open();
    QEventLoop loop;
    m_loop = &loop;
    if (!m_finished)
        loop.exec();
    m_loop = nullptr;
}

void frmEmailSendReceive::finish() {
    if (m_finished)
        return;
    m_finished = true;
    state().closing = true;
    hoverTimer().stop();
    // Closing never waits on the network for long: a running action is
    // aborted, and errors while logging out are of no interest any more.
    m_runner->close();
    hide();
    if (m_loop)
        m_loop->quit();
}

void frmEmailSendReceive::buttonClicked(int index) {
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    if (b.command.toUpper() == "OK")
        finish();
    else if (m_run)
        m_run(b.command);
}

void frmEmailSendReceive::closeEvent(QCloseEvent* event) {
    finish();
    event->accept();
}

} // namespace mirel
