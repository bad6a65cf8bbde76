#include "ui/frmInput.h"

#include "platform/Cp1252.h"
#include "settings/CommaList.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "skin/Placement.h"
#include "ui/LayoutEngine.h"
#include "ui/ShapeWindow.h"
#include "ui/SoundPlayer.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProcess>
#include <QProxyStyle>
#include <QScreen>

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

void runDetached(const QByteArray& command, const QString& workingDir) {
    QStringList args = QProcess::splitCommand(Cp1252::toUnicode(command));
    if (args.isEmpty())
        return;
    const QString program = args.takeFirst();
    QProcess::startDetached(program, args, workingDir);
}

} // namespace

frmInput::frmInput(const LayoutEngine& engine, bool passwordMode, QWidget* parent)
    : SkinHost(parent, Qt::Dialog | Qt::FramelessWindowHint),
      m_engine(std::make_unique<LayoutEngine>(engine.context())), m_input(new QLineEdit(this)) {
    const SkinContext& ctx = m_engine->context();
    const QString skin = ctx.folders.themeFile(QStringLiteral("terminal.skn"));
    setSoundPlayer(ctx.sounds);
    setWindowTitle(passwordMode ? QStringLiteral("Password") : QStringLiteral("Input"));
    setAccessibleName(windowTitle());
    setAttribute(Qt::WA_DeleteOnClose, false);
    m_run = [dir = ctx.folders.ProgramDir](const QByteArray& c) { runDetached(c, dir); };

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

    QImage background;
    if (ctx.ini.ReadIniKey(kSection, "BackGround", skin) && !ctx.ini.IniValue.isEmpty())
        background = QImage(ctx.folders.themeFile(Cp1252::toUnicode(ctx.ini.IniValue)));
    QRgb mask = qRgb(255, 0, 255);
    if (ctx.ini.ReadIniKey(kSection, "MaskColor", skin)) {
        const Rgb c = parseRgb(ctx.ini.IniValue);
        mask = qRgb(c.r, c.g, c.b);
    }
    resize(background.isNull() ? QSize(320, 120) : background.size());
    if (ctx.ini.ReadIniKey(kSection, "InputBox", skin))
        applyInputBox(ctx.ini.IniValue);
    else
        m_input->setGeometry(10, 10, width() - 20, 24);

    m_engine->readAnimation("STARTUP", skin);
    m_engine->LayoutSection(*this, kSection, skin);
    ShapeWindow(this, background, mask);
    m_input->raise();
    startHoverTimer();
}

frmInput::~frmInput() = default;

void frmInput::applyInputBox(const QByteArray& value) {
    const QList<QByteArray> f = splitCommaList(value);
    auto field = [&f](int i) { return i < f.size() ? f[i] : QByteArray(); };
    m_input->setGeometry(
        placeRect(field(0), field(1), field(2), field(3), size(), StretchRule::BelowOne, false));
    QPalette pal = m_input->palette();
    if (f.size() >= 7) {
        const Rgb b = parseRgb(f.mid(4, 3).join(','));
        pal.setColor(QPalette::Base, QColor(b.r, b.g, b.b));
    }
    if (f.size() >= 10) {
        const Rgb t = parseRgb(f.mid(7, 3).join(','));
        pal.setColor(QPalette::Text, QColor(t.r, t.g, t.b));
    }
    m_input->setPalette(pal);
    QFont font = m_input->font();
    if (!field(10).trimmed().isEmpty())
        font.setFamily(Cp1252::toUnicode(field(10).trimmed()));
    if (const long pt = leadingNumber(field(11)); pt > 0 && pt < 500)
        font.setPointSize(int(pt));
    m_input->setFont(font);
}

void frmInput::exec() {
    setWindowModality(Qt::ApplicationModal);
    if (QWidget* p = parentWidget())
        move(p->mapToGlobal(p->rect().center()) - rect().center());
    else if (QScreen* s = QGuiApplication::primaryScreen())
        move(s->availableGeometry().center() - rect().center());
    show();
    m_input->setFocus();
    QEventLoop loop;
    m_loop = &loop;
    if (isVisible())
        loop.exec();
    m_loop = nullptr;
}

void frmInput::confirm() {
    m_result = Cp1252::fromUnicode(m_input->text());
    finish();
}

void frmInput::finish() {
    state().closing = true;
    hoverTimer().stop();
    hide();
    if (m_loop)
        m_loop->quit();
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
    else if (m_run)
        m_run(b.command);
}

void frmInput::closeEvent(QCloseEvent* event) {
    finish();
    event->accept();
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
