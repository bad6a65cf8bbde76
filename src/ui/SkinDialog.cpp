#include "ui/SkinDialog.h"

#include "platform/Cp1252.h"
#include "settings/CommaList.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "skin/Placement.h"
#include "ui/LayoutEngine.h"
#include "ui/ShapeWindow.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QProcess>
#include <QScreen>
#include <QTextEdit>
#include <QWidget>

namespace mirel {

SkinDialog::SkinDialog(const LayoutEngine& engine, QByteArray section, const QString& title,
                       QWidget* parent)
    : SkinHost(parent, Qt::Dialog | Qt::FramelessWindowHint),
      m_engine(std::make_unique<LayoutEngine>(engine.context())), m_section(std::move(section)),
      m_skin(engine.context().folders.themeFile(QStringLiteral("terminal.skn"))),
      m_mask(qRgb(255, 0, 255)) {
    setSoundPlayer(context().sounds);
    setWindowTitle(title);
    setAccessibleName(title);
    setAttribute(Qt::WA_DeleteOnClose, false);
    m_run = [this](const QByteArray& command) {
        if (const auto& run = programStarter())
            run(command, this);
    };
}

SkinDialog::~SkinDialog() = default;

std::function<void(const QByteArray&, QWidget*)>& SkinDialog::programStarter() {
    static std::function<void(const QByteArray&, QWidget*)> starter;
    return starter;
}

const SkinContext& SkinDialog::context() const {
    return m_engine->context();
}

void SkinDialog::layOut(QSize fallback) {
    IniHelpers& ini = context().ini;
    if (ini.ReadIniKey(m_section, "BackGround", m_skin) && !ini.IniValue.isEmpty())
        m_background = QImage(context().folders.themeFile(Cp1252::toUnicode(ini.IniValue)));
    if (ini.ReadIniKey(m_section, "MaskColor", m_skin)) {
        const Rgb c = parseRgb(ini.IniValue);
        m_mask = qRgb(c.r, c.g, c.b);
    }
    resize(m_background.isNull() ? fallback : m_background.size());
    m_engine->readAnimation("STARTUP", m_skin);
    m_engine->LayoutSection(*this, m_section, m_skin);
}

void SkinDialog::shapeAndHover() {
    ShapeWindow(this, m_background, m_mask);
    startHoverTimer();
}

void SkinDialog::exec() {
    setWindowModality(Qt::ApplicationModal);
    if (QWidget* p = parentWidget())
        move(p->mapToGlobal(p->rect().center()) - rect().center());
    else if (QScreen* s = QGuiApplication::primaryScreen())
        move(s->availableGeometry().center() - rect().center());
    show();
    onShown();
    QEventLoop loop;
    m_loop = &loop;
    if (!m_finished && isVisible())
        loop.exec();
    m_loop = nullptr;
}

void SkinDialog::finish() {
    if (m_finished)
        return;
    m_finished = true;
    state().closing = true;
    hoverTimer().stop();
    onFinish();
    hide();
    if (m_loop)
        m_loop->quit();
}

void SkinDialog::applyBox(QWidget* box, const QByteArray& value) const {
    const QList<QByteArray> f = splitCommaList(value);
    auto field = [&f](int i) { return i < f.size() ? f[i] : QByteArray(); };
    box->setGeometry(
        placeRect(field(0), field(1), field(2), field(3), size(), StretchRule::BelowOne, false));
    QPalette pal = box->palette();
    if (f.size() >= 7) {
        const Rgb b = parseRgb(f.mid(4, 3).join(','));
        pal.setColor(QPalette::Base, QColor(b.r, b.g, b.b));
        pal.setColor(QPalette::Window, QColor(b.r, b.g, b.b)); // labels fill with this
        pal.setColor(QPalette::Button, QColor(b.r, b.g, b.b)); // and choosers with this
    }
    if (f.size() >= 10) {
        const Rgb t = parseRgb(f.mid(7, 3).join(','));
        pal.setColor(QPalette::Text, QColor(t.r, t.g, t.b));
        pal.setColor(QPalette::WindowText, QColor(t.r, t.g, t.b));
        pal.setColor(QPalette::ButtonText, QColor(t.r, t.g, t.b));
    }
    box->setPalette(pal);
    QFont font = box->font();
    if (!field(10).trimmed().isEmpty())
        font.setFamily(Cp1252::toUnicode(field(10).trimmed()));
    if (const long pt = leadingNumber(field(11)); pt > 0 && pt < 500)
        font.setPointSize(int(pt));
    box->setFont(font);
}

void SkinDialog::startProgram(const QByteArray& command) const {
    if (m_run)
        m_run(command);
}

void SkinDialog::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // Enter in a multi-line box is a new line, not "OK".
    const bool inText = qobject_cast<QTextEdit*>(focusWidget()) != nullptr;
    const QByteArray command = event->key() == Qt::Key_Escape ? QByteArrayLiteral("QUIT")
                               : enter && !inText             ? QByteArrayLiteral("OK")
                                                              : QByteArray();
    for (int i = 1; !command.isEmpty() && i <= state().buttonCount(); ++i)
        if (state().button(i).command.toUpper() == command) {
            buttonClicked(i);
            return;
        }
    SkinHost::keyPressEvent(event);
}

void SkinDialog::closeEvent(QCloseEvent* event) {
    finish();
    event->accept();
}

void SkinDialog::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        m_dragFrom = event->position().toPoint();
    SkinHost::mousePressEvent(event);
}

void SkinDialog::mouseMoveEvent(QMouseEvent* event) {
    if (m_dragFrom && (event->buttons() & Qt::LeftButton))
        move(event->globalPosition().toPoint() - *m_dragFrom);
    else
        m_dragFrom.reset();
    SkinHost::mouseMoveEvent(event);
}

} // namespace mirel
