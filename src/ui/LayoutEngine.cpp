#include "ui/LayoutEngine.h"

#include "skin/AnimationSwitches.h"

#include "platform/Cp1252.h"
#include "platform/PathResolver.h"
#include "settings/CommaList.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "skin/ControlLine.h"
#include "skin/Placement.h"
#include "skin/SkinLines.h"
#include "ui/AnimatedPicture.h"
#include "ui/SkinButton.h"
#include "ui/SkinHost.h"
#include "ui/ThemePictures.h"

#include <QCheckBox>
#include <QEventLoop>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTextEdit>
#include <QTimer>
#include <QTreeWidget>

namespace mirel {
namespace {

// Bytes of a single animation file we are willing to decode; anything larger
// is not a skin animation.
constexpr qint64 kMaxAnimationBytes = 16 * 1024 * 1024;

QColor toColour(ControlLine::Colour c) {
    return QColor(c.r, c.g, c.b);
}

// Colours from fields from..from+2 (back) and from+3..from+5 (fore) and a
// font from from+6 (name) and from+7 (size in points); absent parts are
// left as they are.
void applyLook(QWidget* w, const ControlLine& line, int from, bool withFore, bool withFont) {
    QPalette pal = w->palette();
    if (!line.field(from).isEmpty()) {
        const QColor back = toColour(line.colour(from));
        pal.setColor(QPalette::Base, back);
        pal.setColor(QPalette::Window, back);
        pal.setColor(QPalette::Button, back);
        w->setAutoFillBackground(true);
    }
    if (withFore && !line.field(from + 3).isEmpty()) {
        const QColor fore = toColour(line.colour(from + 3));
        pal.setColor(QPalette::Text, fore);
        pal.setColor(QPalette::WindowText, fore);
        pal.setColor(QPalette::ButtonText, fore);
    }
    w->setPalette(pal);
    if (withFont) {
        const QByteArray family = line.field(from + 6).trimmed();
        const long size = line.number(from + 7);
        QFont font = w->font();
        if (!family.isEmpty())
            font.setFamily(Cp1252::toUnicode(family));
        if (size > 0 && size < 500)
            font.setPointSize(int(size));
        w->setFont(font);
    }
}

// Tab moves on from a multi-line box like from any other; Ctrl+Tab types a tab.
class CtrlTabTypesTab : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::ControlModifier) {
                static_cast<QTextEdit*>(watched)->insertPlainText(QStringLiteral("\t"));
                return true;
            }
        }
        return false;
    }
};

const char* const kPlacedByLine = "mirelPlacedByLine";
const char* const kPlacedFromField = "mirelPlacedFromField";

bool isAgendaLabel(const QByteArray& upper) {
    static const char* const kNames[] = {"DAY", "MONTH", "YEAR", "SHOUR", "SMIN", "EHOUR", "EMIN"};
    for (const char* n : kNames)
        if (upper == n)
            return true;
    return false;
}

// The key under which an SP line's control is kept, empty for names that
// select nothing.
QByteArray specialKey(const QByteArray& name) {
    const QByteArray lower = name.toLower();
    if (lower == "emailaccounts" || lower == "emailfontname" || lower == "emailfontsize" ||
        lower == "emailhostdelete" || lower == "emailhostauto" || lower == "emailedit" ||
        lower == "emailfolder" || lower == "emailfolders")
        return lower;
    if (lower.startsWith("emailbut"))
        return "emailbut" + QByteArray::number(qBound(0L, leadingNumber(lower.mid(8)), 999L));
    if (lower.startsWith("emailtext")) {
        static const char* const kFields[] = {"bcc",  "cc",   "email", "name", "pass",
                                              "pop3", "smtp", "to",    "user"};
        const QByteArray rest = lower.mid(9);
        for (const char* f : kFields)
            if (rest == f)
                return "emailtext" + rest;
        return "emailtextsubject";
    }
    return {};
}

} // namespace

void LayoutEngine::readAnimation(const QByteArray& section, const QString& file) {
    AnimationSwitches a{m_ctx.animated, m_ctx.animDelay};
    a.read(m_ctx.ini, section, file);
    m_ctx.animated = a.animated;
    m_ctx.animDelay = a.delay;
}

bool LayoutEngine::pause(SkinHost* host) {
    QPointer<SkinHost> guard(host);
    if (!m_ctx.animated)
        return true;
    host->update();
    // A timed event loop rather than a sleep: the window repaints and input
    // keeps flowing while the screen builds up.
    QEventLoop loop;
    QTimer::singleShot(qMax(0, m_ctx.animDelay), &loop, &QEventLoop::quit);
    loop.exec();
    return !guard.isNull();
}

void LayoutEngine::LayoutSection(SkinHost& host, const QByteArray& section,
                                 const QString& skinFile) {
    const bool isDefault = section.compare("DEFAULT", Qt::CaseInsensitive) == 0;
    if (isDefault) {
        host.state().resetAll();
        host.trimToTables();
    } else {
        host.state().record();
    }
    const QList<NumberedLine> lines = SkinLines(m_ctx.ini).read(section, skinFile);
    QPointer<SkinHost> guard(&host);
    for (const NumberedLine& l : lines) {
        layoutLine(host, parseControlLine(l.text), l.keyNumber);
        if (!pause(&host) || guard.isNull())
            return;
    }
    if (isDefault) {
        host.state().defaultButtonCount = host.state().buttonCount();
        host.state().record();
    }
}

void LayoutEngine::ClearScreen(SkinHost& host) {
    for (PlacedPart part :
         {PlacedPart::MonthPicture, PlacedPart::HtmlFrame, PlacedPart::MessageBody,
          PlacedPart::MessageList, PlacedPart::AttachmentList, PlacedPart::HtmlView,
          PlacedPart::MessageHeader})
        if (QWidget* w = host.placedIfAny(part))
            w->hide();
    for (int i = 0; i < 2; ++i)
        host.modeButton(i)->hide();
    for (int i = 0; i < 7; ++i)
        host.checkButton(i)->hide();
    // The e-mail screen's folder name and chooser go with the screen.
    for (const QByteArray key : {"emailfolder", "emailfolders"})
        if (host.hasSpecial(key))
            host.special(key)->hide();

    SkinState& state = host.state();
    const bool wasClosing = state.closing;
    state.closing = true;
    if (!unloadControls(host, state.recorded.controls))
        return;
    const int selected = state.selectedPriorityButton;
    state.restore();
    host.trimToTables();
    // The priority selection goes with the screen; a selected button that
    // survives shows its normal picture again unless the pointer is on it.
    if (SkinButton* b = host.button(selected))
        b->setLit(b->hovered);
    state.closing = wasClosing;
}

bool LayoutEngine::unloadControls(SkinHost& host, int keep) {
    QPointer<SkinHost> guard(&host);
    while (host.controlCount() > qMax(0, keep)) {
        QWidget* last = host.control(host.controlCount());
        if (m_ctx.animated && last && last->isVisible() && !pause(&host))
            return false;
        if (guard.isNull())
            return false;
        host.removeLastControl();
        if (m_ctx.animated)
            host.repaint();
    }
    return true;
}

void LayoutEngine::rememberPlacement(QWidget* w, const QByteArray& line, int firstField) {
    w->setProperty(kPlacedByLine, line);
    w->setProperty(kPlacedFromField, firstField);
}

void LayoutEngine::Relayout(SkinHost& host) {
    const QSize size = host.size();
    for (QWidget* w : host.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        const QVariant line = w->property(kPlacedByLine);
        if (line.isValid())
            w->setGeometry(placeControl(parseControlLine(line.toByteArray()), size,
                                        w->property(kPlacedFromField).toInt()));
    }
}

void LayoutEngine::layoutLine(SkinHost& host, const ControlLine& line, int keyNumber) {
    const int created = host.controlCount();
    placeLine(host, line, keyNumber);
    if (host.controlCount() > created)
        rememberPlacement(host.control(host.controlCount()), line.raw);
}

void LayoutEngine::placeLine(SkinHost& host, const ControlLine& line, int keyNumber) {
    SkinState& state = host.state();
    SkinTables& t = state.tables;
    const QSize size = host.size();
    const QRect rect = placeControl(line, size);

    switch (line.kindCode) {
    case ControlKind::Button: {
        SkinButtonEntry entry;
        entry.picturePath = m_ctx.folders.themeFile(Cp1252::toUnicode(line.name));
        entry.hoverSound = line.field(7);
        entry.clickSound = line.field(8);
        entry.keyNumber = keyNumber;
        entry.command = line.command();
        const int index = state.buttonCount() + 1;
        auto* b = new SkinButton(index, &host);
        b->setPicture(entry.picturePath);
        b->setGeometry(rect);
        const QString command = Cp1252::toUnicode(entry.command);
        b->setObjectName(QStringLiteral("imgBut%1").arg(index));
        b->setAccessibleName(command.isEmpty() ? QStringLiteral("imgBut %1").arg(index) : command);
        QObject::connect(b, &SkinButton::clicked, &host, [h = &host, index] {
            if (!h->state().closing)
                h->buttonClicked(index);
        });
        // The agenda's date and time steppers run on while held down.
        const QByteArray upper = entry.command.toUpper();
        if ((upper.startsWith("MODE") || upper.startsWith("START") || upper.startsWith("END")) &&
            (upper.endsWith("UP") || upper.endsWith("DOWN"))) {
            b->setAutoRepeat(true);
            b->setAutoRepeatDelay(400);
            b->setAutoRepeatInterval(110);
        }
        state.addButton(entry);
        state.assignRole(line.roleSlot, index);
        state.noteMailCommand(entry.command, index);
        host.adoptControl(b, CreatedKind::Button);
        b->show();
        b->raise();
        break;
    }
    case ControlKind::Picture: {
        const int index = ++t.pictures;
        auto* p = new QLabel(&host);
        QString path;
        if (line.name.toLower() == "themepic") {
            // The theme's preview picture is named after the theme folder.
            QString folder = m_ctx.folders.ThemeDir;
            folder.chop(1);
            path = resolvePath(m_ctx.folders.ProgramDir + folder + QStringLiteral(".bmp"));
            t.themePicture = index;
        } else {
            path = m_ctx.folders.themeFile(Cp1252::toUnicode(line.name));
        }
        p->setPixmap(ThemePictures::get(path));
        p->setScaledContents(true);
        // Clicks pass through to what lies beneath, as for a disabled picture
        // (without the greyed look).
        p->setAttribute(Qt::WA_TransparentForMouseEvents);
        p->setObjectName(QStringLiteral("imgPic%1").arg(index));
        p->setAccessibleName(QStringLiteral("imgPic %1").arg(index));
        p->setGeometry(rect);
        host.adoptControl(p, CreatedKind::Picture);
        p->show();
        break;
    }
    case ControlKind::TextBox: {
        const int index = ++t.textBoxes;
        auto* e = new QLineEdit(&host);
        e->setMaxLength(255);
        e->setObjectName(QStringLiteral("txtBox%1").arg(index));
        e->setAccessibleName(QStringLiteral("txtBox %1").arg(index));
        applyLook(e, line, 7, true, true);
        e->setGeometry(rect);
        host.adoptControl(e, CreatedKind::TextBox);
        e->show();
        break;
    }
    case ControlKind::MultiLine: {
        const int index = ++t.multiLines;
        auto* e = new QTextEdit(&host);
        e->setAcceptRichText(false);
        e->setTabChangesFocus(true);
        e->installEventFilter(new CtrlTabTypesTab(e));
        e->setObjectName(QStringLiteral("txtMulti%1").arg(index));
        e->setAccessibleName(QStringLiteral("txtMulti %1").arg(index));
        applyLook(e, line, 7, true, true);
        e->setGeometry(rect);
        host.adoptControl(e, CreatedKind::MultiLine);
        e->show();
        break;
    }
    case ControlKind::Label: {
        const int index = ++t.labels;
        auto* l = new QLabel(&host);
        // Labels show themes' captions and mail's status: never markup.
        l->setTextFormat(Qt::PlainText);
        const QString caption = Cp1252::toUnicode(line.field(15));
        l->setText(caption);
        l->setObjectName(QStringLiteral("lblBox%1").arg(index));
        l->setAccessibleName(caption.trimmed().isEmpty() ? QStringLiteral("lblBox %1").arg(index)
                                                         : caption);
        applyLook(l, line, 7, true, true);
        l->setGeometry(rect);
        const QByteArray upper = line.name.trimmed().toUpper();
        if (isAgendaLabel(upper))
            t.agendaLabels[upper] = index;
        host.adoptControl(l, CreatedKind::Label);
        l->show();
        break;
    }
    case ControlKind::List: {
        const int index = ++t.lists;
        auto* l = new QListWidget(&host);
        const bool overview = line.name.trimmed().toLower() == "overview";
        l->setObjectName(overview ? QStringLiteral("lstOverview")
                                  : QStringLiteral("lstBox%1").arg(index));
        l->setAccessibleName(overview ? QStringLiteral("Overview")
                                      : QStringLiteral("lstBox %1").arg(index));
        applyLook(l, line, 7, true, true);
        l->setGeometry(rect);
        host.adoptControl(l, CreatedKind::List);
        host.watchHover(l->viewport());
        if (overview)
            host.setOverviewList(l);
        l->show();
        break;
    }
    case ControlKind::MessageList: {
        QWidget* w = host.placed(PlacedPart::MessageList);
        if (auto* tree = qobject_cast<QTreeWidget*>(w))
            tree->clear();
        else if (auto* list = qobject_cast<QListWidget*>(w))
            list->clear();
        applyLook(w, line, 7, true, true);
        w->setGeometry(rect);
        rememberPlacement(w, line.raw);
        w->setEnabled(true);
        w->show();
        break;
    }
    case ControlKind::MessageView:
        for (PlacedPart part :
             {PlacedPart::HtmlFrame, PlacedPart::MessageBody, PlacedPart::HtmlView}) {
            QWidget* w = host.placed(part);
            applyLook(w, line, 7, true, true);
            w->setGeometry(rect);
            rememberPlacement(w, line.raw);
            w->setEnabled(true);
            w->show();
            w->raise();
        }
        break;
    case ControlKind::MessageHeader: {
        QWidget* w = host.placed(PlacedPart::MessageHeader);
        applyLook(w, line, 7, true, true);
        w->setGeometry(rect);
        rememberPlacement(w, line.raw);
        w->show();
        break;
    }
    case ControlKind::AttachmentList: {
        QWidget* w = host.placed(PlacedPart::AttachmentList);
        applyLook(w, line, 7, true, true);
        w->setGeometry(rect);
        rememberPlacement(w, line.raw);
        break;
    }
    case ControlKind::ModeButton:
    case ControlKind::CheckButton: {
        QWidget* w = line.kindCode == ControlKind::ModeButton
                         ? static_cast<QWidget*>(host.modeButton(line.switchIndex))
                         : host.checkButton(line.switchIndex);
        QPalette pal = w->palette();
        pal.setColor(QPalette::Window, host.palette().color(QPalette::Window));
        w->setPalette(pal);
        w->setGeometry(rect);
        rememberPlacement(w, line.raw);
        w->show();
        w->raise();
        break;
    }
    case ControlKind::Special:
        layoutSpecial(host, line);
        break;
    case ControlKind::Animation: {
        QFile f(m_ctx.folders.themeFile(Cp1252::toUnicode(line.name)));
        if (!f.open(QIODevice::ReadOnly) || f.size() > kMaxAnimationBytes)
            break;
        GifFrames frames = readGifFrames(f.readAll());
        if (frames.pictures.isEmpty())
            break;
        const int index = ++t.animations;
        t.animationFrames += int(frames.pictures.size());
        auto* a = new AnimatedPicture(std::move(frames), &host);
        a->setObjectName(QStringLiteral("imgAnim%1").arg(index));
        a->setAccessibleName(QStringLiteral("imgAnim %1").arg(index));
        a->setAttribute(Qt::WA_TransparentForMouseEvents);
        a->setGeometry(rect);
        a->setPausedWhen([h = QPointer<SkinHost>(&host)] { return !h || h->state().closing; });
        host.adoptControl(a, CreatedKind::Animation);
        a->show();
        a->raise();
        a->start();
        break;
    }
    case ControlKind::Unknown:
        break;
    }
}

void LayoutEngine::layoutSpecial(SkinHost& host, const ControlLine& line) {
    const QByteArray key = specialKey(line.name);
    if (key.isEmpty())
        return;
    const QSize size = host.size();
    QWidget* w = host.special(key);
    rememberPlacement(w, line.raw, key.startsWith("emailbut") ? 4 : 3);
    if (key.startsWith("emailbut")) {
        w->setGeometry(placeControl(line, size, 4));
        if (auto* b = qobject_cast<QPushButton*>(w)) {
            const QPixmap pic =
                ThemePictures::get(m_ctx.folders.themeFile(Cp1252::toUnicode(line.field(3))));
            b->setIcon(pic);
            b->setIconSize(w->size());
        }
        applyLook(w, line, 8, true, false);
    } else if (key == "emailhostdelete" || key == "emailhostauto") {
        const QRect r =
            placeRect(line.field(3), line.field(4), "1", "1", size, StretchRule::BelowOne, true);
        w->setProperty(kPlacedByLine, {}); // sized by its text, not by the line
        w->move(r.topLeft());
        w->adjustSize();
    } else if (key.startsWith("emailtext")) {
        w->setGeometry(placeControl(line, size));
        if (auto* e = qobject_cast<QLineEdit*>(w)) {
            e->clear();
            e->setMaxLength(255);
        }
        w->setEnabled(true);
        w->setFocusPolicy(Qt::StrongFocus);
        applyLook(w, line, 7, true, true);
    } else if (key == "emailedit") {
        w->setGeometry(placeControl(line, size));
    } else if (key == "emailfolder" || key == "emailfolders") {
        w->setGeometry(placeControl(line, size));
        applyLook(w, line, 7, true, true);
    } else {
        w->setGeometry(placeControl(line, size));
        applyLook(w, line, 7, false, false);
    }
    w->show();
    w->raise();
}

} // namespace mirel
