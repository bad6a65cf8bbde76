#include "ui/SkinHost.h"

#include "ui/AnimatedPicture.h"
#include "ui/HoverPass.h"
#include "ui/SkinButton.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFontComboBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QTextBrowser>
#include <QTextEdit>
#include <QTreeWidget>

namespace mirel {
namespace {

template <class T> T* at(const QList<QPointer<T>>& list, int i) {
    return i >= 1 && i <= list.size() ? list[i - 1].data() : nullptr;
}

template <class T> void popLast(QList<QPointer<T>>& list) {
    if (!list.isEmpty())
        list.removeLast();
}

template <class T> void cut(QList<QPointer<T>>& list, int count) {
    if (list.size() > count)
        list.resize(qMax(0, count));
}

QWidget* makePlaceholder(PlacedPart part, QWidget* parent) {
    QWidget* w = nullptr;
    QString name;
    switch (part) {
    case PlacedPart::MessageList: {
        auto* tree = new QTreeWidget(parent);
        tree->setRootIsDecorated(false);
        w = tree;
        name = QStringLiteral("lstMessages");
        break;
    }
    case PlacedPart::MessageBody:
        w = new QTextEdit(parent);
        static_cast<QTextEdit*>(w)->setReadOnly(true);
        name = QStringLiteral("txtBody");
        break;
    case PlacedPart::HtmlView:
        w = new QTextBrowser(parent);
        name = QStringLiteral("webView");
        break;
    case PlacedPart::HtmlFrame:
        w = new QFrame(parent);
        name = QStringLiteral("picWeb");
        break;
    case PlacedPart::AttachmentList:
        w = new QListWidget(parent);
        name = QStringLiteral("lvAttachments");
        break;
    case PlacedPart::MonthPicture:
        w = new QLabel(parent);
        name = QStringLiteral("picMonth");
        break;
    case PlacedPart::MessageHeader: {
        // Header values come from strangers: never read as markup.
        auto* l = new QLabel(parent);
        l->setTextFormat(Qt::PlainText);
        l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        l->setTextInteractionFlags(Qt::TextSelectableByMouse);
        l->setMargin(4);
        w = l;
        name = QStringLiteral("lblHeaders");
        break;
    }
    }
    w->setObjectName(name);
    w->setAccessibleName(name);
    w->hide();
    return w;
}

QWidget* makeSpecial(const QByteArray& key, QWidget* parent) {
    QWidget* w;
    if (key == "emailaccounts" || key == "emailfontsize")
        w = new QComboBox(parent);
    else if (key == "emailfontname")
        w = new QFontComboBox(parent);
    else if (key.startsWith("emailbut"))
        w = new QPushButton(parent);
    else if (key == "emailhostdelete" || key == "emailhostauto")
        w = new QCheckBox(parent);
    else if (key.startsWith("emailtext"))
        w = new QLineEdit(parent);
    else
        w = new QTextEdit(parent);
    const QString name = QString::fromLatin1(key);
    w->setObjectName(name);
    w->setAccessibleName(name);
    w->hide();
    return w;
}

} // namespace

SkinHost::SkinHost(QWidget* parent, Qt::WindowFlags flags) : QWidget(parent, flags) {
    setMouseTracking(true);
    m_hoverTimer.setInterval(100);
    connect(&m_hoverTimer, &QTimer::timeout, this, &SkinHost::runHover);
    for (int i = 0; i < 2; ++i) {
        auto* b = new QRadioButton(this);
        b->setObjectName(QStringLiteral("optMode%1").arg(i));
        b->setAccessibleName(QStringLiteral("optMode %1").arg(i));
        b->hide();
        connect(b, &QRadioButton::clicked, this, [this, i] { modeButtonClicked(i); });
        watchHover(b);
        m_modeButtons[i] = b;
    }
    for (int i = 0; i < 7; ++i) {
        auto* c = new QCheckBox(this);
        c->setObjectName(QStringLiteral("chkMirel%1").arg(i));
        c->setAccessibleName(QStringLiteral("chkMirel %1").arg(i));
        c->hide();
        watchHover(c);
        m_checkButtons[i] = c;
    }
}

SkinHost::~SkinHost() {
    m_state.closing = true;
    m_hoverTimer.stop();
}

SkinButton* SkinHost::button(int i) const {
    return at(m_buttons, i);
}
QLabel* SkinHost::picture(int i) const {
    return at(m_pictures, i);
}
QLineEdit* SkinHost::textBox(int i) const {
    return at(m_textBoxes, i);
}
QTextEdit* SkinHost::multiLine(int i) const {
    return at(m_multiLines, i);
}
QLabel* SkinHost::label(int i) const {
    return at(m_labels, i);
}
QListWidget* SkinHost::list(int i) const {
    return at(m_lists, i);
}
AnimatedPicture* SkinHost::animation(int i) const {
    return at(m_animations, i);
}
QWidget* SkinHost::control(int i) const {
    return at(m_controls, i);
}

QListWidget* SkinHost::generalList() const {
    for (qsizetype i = m_lists.size(); i > 0; --i)
        if (m_lists[i - 1] && m_lists[i - 1] != m_overview)
            return m_lists[i - 1];
    return nullptr;
}

QListWidget* SkinHost::overviewList() const {
    return m_overview;
}

QRadioButton* SkinHost::modeButton(int i) const {
    return i >= 0 && i < 2 ? m_modeButtons[i] : nullptr;
}

QCheckBox* SkinHost::checkButton(int i) const {
    return i >= 0 && i < 7 ? m_checkButtons[i] : nullptr;
}

QWidget* SkinHost::placed(PlacedPart part) {
    QPointer<QWidget>& w = m_placed[part];
    if (!w) {
        w = makePlaceholder(part, this);
        watchHover(w);
    }
    return w;
}

void SkinHost::setPlaced(PlacedPart part, QWidget* widget) {
    if (widget && widget->parentWidget() != this)
        widget->setParent(this);
    m_placed[part] = widget;
    if (widget)
        watchHover(widget);
}

QWidget* SkinHost::special(const QByteArray& key) {
    QPointer<QWidget>& w = m_special[key];
    if (!w) {
        w = makeSpecial(key, this);
        watchHover(w);
    }
    return w;
}

void SkinHost::setSpecial(const QByteArray& key, QWidget* widget) {
    if (widget && widget->parentWidget() != this)
        widget->setParent(this);
    m_special[key] = widget;
}

void SkinHost::setBackgroundColour(const QColor& colour) {
    QPalette pal = palette();
    pal.setColor(QPalette::Window, colour);
    setPalette(pal);
    setAutoFillBackground(true);
}

void SkinHost::setBackgroundPicture(const QPixmap& picture) {
    m_background = picture;
    update();
}

void SkinHost::startHoverTimer() {
    m_hoverTimer.start();
}

void SkinHost::selectPriority(int slot) {
    if (slot < 0 || slot >= int(m_state.tables.prioritySlots.size()))
        return;
    const int previous = m_state.selectedPriorityButton;
    const int next = m_state.tables.prioritySlots[slot];
    if (previous != next)
        if (SkinButton* b = button(previous))
            b->setLit(b->hovered);
    m_state.selectedPriorityButton = next;
    if (SkinButton* b = button(next))
        b->setLit(true);
}

void SkinHost::setButtonPicture(int index, const QString& path) {
    if (index < 1 || index > m_state.buttonCount())
        return;
    m_state.tables.buttons[index - 1].picturePath = path;
    if (SkinButton* b = button(index)) {
        const bool lit = b->isLit();
        b->setPicture(path);
        b->setLit(lit);
    }
}

void SkinHost::buttonClicked(int) {}

void SkinHost::adoptControl(QWidget* control, CreatedKind kind) {
    m_controls.append(control);
    m_tags.append(kind);
    switch (kind) {
    case CreatedKind::Button:
        m_buttons.append(static_cast<SkinButton*>(control));
        break;
    case CreatedKind::Picture:
        m_pictures.append(static_cast<QLabel*>(control));
        break;
    case CreatedKind::TextBox:
        m_textBoxes.append(static_cast<QLineEdit*>(control));
        break;
    case CreatedKind::MultiLine:
        m_multiLines.append(static_cast<QTextEdit*>(control));
        break;
    case CreatedKind::Label:
        m_labels.append(static_cast<QLabel*>(control));
        break;
    case CreatedKind::List:
        m_lists.append(static_cast<QListWidget*>(control));
        break;
    case CreatedKind::Animation:
        m_animations.append(static_cast<AnimatedPicture*>(control));
        break;
    }
    m_state.tables.controls = int(m_controls.size());
    watchHover(control);
}

void SkinHost::removeLastControl() {
    if (m_controls.isEmpty())
        return;
    QPointer<QWidget> w = m_controls.takeLast();
    m_state.tables.controls = int(m_controls.size());
    // Controls go in reverse creation order, so this one is the last of its kind.
    switch (m_tags.takeLast()) {
    case CreatedKind::Button:
        popLast(m_buttons);
        break;
    case CreatedKind::Picture:
        popLast(m_pictures);
        break;
    case CreatedKind::TextBox:
        popLast(m_textBoxes);
        break;
    case CreatedKind::MultiLine:
        popLast(m_multiLines);
        break;
    case CreatedKind::Label:
        popLast(m_labels);
        break;
    case CreatedKind::List:
        popLast(m_lists);
        if (m_overview == w)
            m_overview = nullptr;
        break;
    case CreatedKind::Animation:
        popLast(m_animations);
        break;
    }
    if (!w)
        return;
    // The control may be the very button whose click is switching screens,
    // still inside its own signal: it goes now from screen and from every
    // table, and is deleted once control is back in the event loop.
    w->hide();
    // Only our own connections: others (the accessibility cache watching
    // for its destruction, among them) must still hear of it.
    QObject::disconnect(w, nullptr, this, nullptr);
    w->removeEventFilter(this);
    w->deleteLater();
}

void SkinHost::trimToTables() {
    const SkinTables& t = m_state.tables;
    // removeLastControl keeps the table's count in step, so take the target first.
    const int keep = qMax(0, t.controls);
    while (m_controls.size() > keep)
        removeLastControl();
    m_state.tables.controls = keep;
    cut(m_buttons, int(t.buttons.size()));
    cut(m_pictures, t.pictures);
    cut(m_textBoxes, t.textBoxes);
    cut(m_multiLines, t.multiLines);
    cut(m_labels, t.labels);
    cut(m_lists, t.lists);
    cut(m_animations, t.animations);
    if (m_overview && !m_lists.contains(m_overview))
        m_overview = nullptr;
}

void SkinHost::watchHover(QWidget* w) {
    if (!w)
        return;
    w->setMouseTracking(true);
    w->installEventFilter(this);
}

bool SkinHost::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
        hoverAt(qobject_cast<QWidget*>(watched), static_cast<QMouseEvent*>(event));
        break;
    case QEvent::MouseButtonRelease:
        hoverAt(qobject_cast<QWidget*>(watched), static_cast<QMouseEvent*>(event));
        if (!m_state.closing && watched) {
            // Lists report a release to the window, which picks the screen's reaction.
            auto* w = qobject_cast<QWidget*>(watched);
            QListWidget* owner = w ? qobject_cast<QListWidget*>(w->parentWidget()) : nullptr;
            if (owner && owner == m_overview)
                overviewListReleased();
            else if (owner && owner == generalList())
                generalListReleased();
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void SkinHost::paintEvent(QPaintEvent* event) {
    if (m_background.isNull()) {
        QWidget::paintEvent(event);
        return;
    }
    QPainter p(this);
    p.drawPixmap(0, 0, m_background);
}

void SkinHost::mouseMoveEvent(QMouseEvent* event) {
    hoverAt(this, event);
    QWidget::mouseMoveEvent(event);
}

void SkinHost::mousePressEvent(QMouseEvent* event) {
    hoverAt(this, event);
    QWidget::mousePressEvent(event);
}

void SkinHost::mouseReleaseEvent(QMouseEvent* event) {
    hoverAt(this, event);
    QWidget::mouseReleaseEvent(event);
}

void SkinHost::hoverAt(QWidget* receiver, const QMouseEvent* event) {
    if (!receiver) {
        runHover();
        return;
    }
    // The event already says where the pointer is and which widget has it;
    // the deepest child at that point is the one under the pointer.
    const QPoint local = event->position().toPoint();
    QWidget* under = receiver->childAt(local);
    HoverPass(*this, event->globalPosition().toPoint(), under ? under : receiver);
}

void SkinHost::runHover() {
    HoverPass(*this);
}

} // namespace mirel
