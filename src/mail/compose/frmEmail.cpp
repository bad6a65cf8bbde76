#include "mail/compose/frmEmail.h"

#include "mail/compose/AddressPicker.h"
#include "mail/compose/frmEmailHtml.h"
#include "mail/compose/frmMenu.h"
#include "mail/mime/HTML2Text.h"
#include "mail/mime/MailDisplayText.h"
#include "mail/store/OutgoingMessageStore.h"
#include "mail/transport/AccountRecord.h"
#include "mail/transport/OutboxMessage.h"
#include "platform/Cp1252.h"
#include "platform/MessageSink.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/SoundPlayer.h"

#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QFontComboBox>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QShortcut>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextList>

namespace mirel {
namespace {

// Toolbar elements.
enum Tool {
    FormatMenu = 0,
    Bold,
    Italic,
    Underline,
    Colour,
    Numbered,
    Bulleted,
    Outdent,
    Indent,
    AlignLeft,
    AlignCentre,
    AlignRight,
    Rule,
    Link,
    Image,
    Unused,
    Attach
};

const char* const kToolRoles[frmEmail::kToolCount] = {
    "Paragraph format", "Bold",      "Italic",  "Underline",  "Text colour",   "Numbered list",
    "Bulleted list",    "Outdent",   "Indent",  "Align left", "Centre",        "Align right",
    "Horizontal rule",  "Hyperlink", "Picture", "",           "Add attachment"};

const QString kLocalPicture =
    QStringLiteral("A picture from this computer cannot be shown inside the message text. "
                   "Add it as an attachment instead.");
const QString kDiscard = QStringLiteral("Discard this message?");

/// The editor never fetches: every resource a document names reads as empty.
class ComposeEditor : public QTextEdit {
public:
    using QTextEdit::QTextEdit;
    QVariant loadResource(int, const QUrl&) override { return QByteArray(""); }
};

/// The picture with every pixel taken two thirds of the way towards its
/// corner colour, the tool's own background: the frame stays, the sign dims.
QPixmap fadedPicture(const QPixmap& picture) {
    QImage image = picture.toImage().convertToFormat(QImage::Format_ARGB32);
    if (image.isNull())
        return picture;
    const QColor back = image.pixelColor(0, 0);
    auto fade = [](int from, int to) { return to + (from - to) / 3; };
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = line[x];
            line[x] = qRgba(fade(qRed(p), back.red()), fade(qGreen(p), back.green()),
                            fade(qBlue(p), back.blue()), qAlpha(p));
        }
    }
    return QPixmap::fromImage(image);
}

void name(QWidget* w, const QString& n) {
    w->setObjectName(n);
    w->setAccessibleName(n);
}

} // namespace

frmEmail::frmEmail(const LayoutEngine& engine, const EmailAccountList& accounts,
                   const ComposePresets& presets, MailStore& store, MessageSink& messages,
                   QWidget* parent)
    : SkinDialog(engine, kSection, QStringLiteral("New message"), parent), m_accounts(accounts),
      m_store(store), m_messages(messages), m_now([] { return QDateTime::currentDateTime(); }),
      m_zone(QTimeZone::systemTimeZone()) {
    m_filePrompt = [this] { return QFileDialog::getOpenFileName(this, tr("Add attachment")); };
    m_colourPrompt = [this]() -> std::optional<QColor> {
        const QColor c = QColorDialog::getColor(Qt::black, this, tr("Text colour"));
        return c.isValid() ? std::optional<QColor>(c) : std::nullopt;
    };
    m_textPrompt = [this](const QString& prompt, const QString& preset) {
        bool ok = false;
        const QString t =
            QInputDialog::getText(this, kMessageTitle, prompt, QLineEdit::Normal, preset, &ok);
        return ok ? t : QString();
    };

    m_edit = new ComposeEditor(this);
    m_edit->hide();
    setSpecial("emailedit", m_edit);
    m_attachments = new QListWidget(this);
    m_attachments->hide();
    setPlaced(PlacedPart::AttachmentList, m_attachments);

    layOut(QSize(940, 540));
    setUpControls(presets, accounts);
    setUpToolbar();
    setUpEditor(presets);
    m_menu = new frmMenu(context().ini, skinFile(), this);
    connect(m_menu, &frmMenu::formatChosen, this, [this](const QString& f) { applyFormat(f); });

    // Placement relative to the main window; a missing width or height
    // takes what the main window leaves.
    IniHelpers& ini = context().ini;
    auto key = [&](const char* k) {
        return ini.ReadIniKey(kSection, k, skinFile()) ? ini.IniValue.trimmed().toInt() : 0;
    };
    const QRect main = parent ? parent->window()->geometry() : QRect();
    const int left = key("Left"), top = key("Top");
    const int width = key("Width") > 0 ? key("Width") : main.width() - left;
    const int height = key("height") > 0 ? key("height") : main.height() - top;
    if (parent && width > 0 && height > 0)
        m_placement = QRect(main.left() + left, main.top() + top, width, height);

    m_timer1.setSingleShot(true);
    m_timer1.setInterval(100);
    connect(&m_timer1, &QTimer::timeout, this, [this] { setEditorDefaults(); });
    m_timer1.start();

    shapeAndHover();
}

frmEmail::~frmEmail() = default;

void frmEmail::setUpControls(const ComposePresets& presets, const EmailAccountList& accounts) {
    m_account = qobject_cast<QComboBox*>(special("emailaccounts"));
    m_to = qobject_cast<QLineEdit*>(special("emailtextto"));
    m_cc = qobject_cast<QLineEdit*>(special("emailtextcc"));
    m_bcc = qobject_cast<QLineEdit*>(special("emailtextbcc"));
    m_subject = qobject_cast<QLineEdit*>(special("emailtextsubject"));
    m_font = qobject_cast<QFontComboBox*>(special("emailfontname"));
    m_size = qobject_cast<QComboBox*>(special("emailfontsize"));
    const std::pair<QWidget*, const char*> names[] = {
        {m_account, "AccountCombo"}, {m_to, "txtTO"},           {m_cc, "txtCC"},
        {m_bcc, "txtBCC"},           {m_subject, "txtSubject"}, {m_font, "FontCombo"},
        {m_size, "FontSizeCombo"},   {m_edit, "DHTMLEdit1"},    {m_attachments, "lvAttachments"}};
    for (const auto& [w, n] : names)
        name(w, QString::fromLatin1(n));
    // The choosers' lines give only a background; their text takes the
    // colour of the recipient boxes so it reads on it.
    for (QWidget* w : std::initializer_list<QWidget*>{m_account, m_font, m_size}) {
        QPalette pal = w->palette();
        for (QPalette::ColorRole role :
             {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
            pal.setColor(role, m_to->palette().color(QPalette::Text));
        w->setPalette(pal);
    }
    // A recipient list is never cut: the outbox keeps it whole.
    for (QLineEdit* e : {m_to, m_cc, m_bcc, m_subject})
        e->setMaxLength(32767);
    m_to->setText(Cp1252::toUnicode(presets.to));
    m_subject->setText(Cp1252::toUnicode(presets.subject));
    m_presetSubject = presets.subject;

    const QList<qsizetype> usable = ComposeRules::usableAccounts(accounts);
    for (qsizetype i : usable)
        m_account->addItem(Cp1252::toUnicode(AccountRecord::name(accounts.at(i))), qlonglong(i));
    m_account->setCurrentIndex(int(ComposeRules::preselectedEntry(accounts, usable)));

    for (int i = 1; i <= 7; ++i)
        m_size->addItem(QString::number(i));
    m_size->setCurrentIndex(frmEmailHtml::kDefaultSize - 1);
    const int arial =
        m_font->findText(QString::fromLatin1(frmEmailHtml::kDefaultFont), Qt::MatchFixedString);
    if (arial >= 0)
        m_font->setCurrentIndex(arial);
    connect(m_font, &QFontComboBox::textActivated, this, [this](const QString& family) {
        QTextCharFormat f;
        f.setFontFamilies({family});
        m_edit->mergeCurrentCharFormat(f);
        m_edit->setFocus();
    });
    connect(m_size, &QComboBox::activated, this, [this](int index) {
        QTextCharFormat f;
        f.setFontPointSize(frmEmailHtml::pointSize(index + 1));
        m_edit->mergeCurrentCharFormat(f);
        m_edit->setFocus();
    });

    for (const QByteArray& entry : presets.lstForward) {
        const auto [path, display] = ComposeRules::forwardEntry(entry);
        auto* item = new QListWidgetItem(display, m_attachments);
        item->setToolTip(path);
    }
    m_attachments->show();
    m_attachments->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_attachments->setViewMode(QListView::IconMode);
    m_attachments->setFlow(QListView::LeftToRight);
    m_attachments->setSpacing(4);
    connect(m_attachments, &QListWidget::itemDoubleClicked, this, [this] {
        for (QListWidgetItem* item : m_attachments->selectedItems())
            delete item;
    });

    setTabOrder(m_to, m_cc);
    setTabOrder(m_cc, m_bcc);
    setTabOrder(m_bcc, m_subject);
    setTabOrder(m_subject, m_edit);
}

QString frmEmail::litPicture(int tool) const {
    // The lit picture of a toolbar button: its picture with "a" before the
    // extension, as for every skin button.
    IniHelpers& ini = context().ini;
    const QByteArray wanted = "emailbut" + QByteArray::number(tool);
    for (int n = 1; n < 100; ++n) {
        if (!ini.ReadIniKey(kSection, QByteArray::number(n).rightJustified(2, '0'), skinFile()))
            break;
        const QList<QByteArray> f = ini.IniValue.split(',');
        if (f.size() > 2 && f[0].trimmed().toUpper() == "SP" &&
            f[1].trimmed().toLower() == wanted) {
            QByteArray pic = f[2].trimmed();
            const qsizetype dot = pic.lastIndexOf('.');
            pic.insert(dot < 0 ? pic.size() : dot, 'a');
            return context().folders.themeFile(Cp1252::toUnicode(pic));
        }
    }
    return {};
}

void frmEmail::setUpToolbar() {
    for (int i = 0; i < kToolCount; ++i) {
        if (i == Unused)
            continue;
        auto* b = qobject_cast<QPushButton*>(special("emailbut" + QByteArray::number(i)));
        m_tools[size_t(i)] = b;
        name(b, QStringLiteral("cmdBut%1").arg(i));
        b->setAccessibleDescription(QString::fromLatin1(kToolRoles[i]));
        b->setToolTip(QString::fromLatin1(kToolRoles[i]));
        b->setFocusPolicy(Qt::NoFocus);
        b->setFlat(true);
        // The latched look: the lit picture, or the picture's colours
        // inverted when the theme has none.
        QIcon icon = b->icon();
        QPixmap lit(litPicture(i));
        if (lit.isNull() && !icon.isNull()) {
            QImage inverted = icon.pixmap(b->iconSize()).toImage();
            inverted.invertPixels();
            lit = QPixmap::fromImage(inverted);
        }
        if (!lit.isNull())
            icon.addPixmap(lit, QIcon::Normal, QIcon::On);
        // The style's own disabled look washes an opaque dark picture into
        // a light grey square; a tool that cannot apply fades instead.
        if (!icon.isNull()) {
            const QPixmap faded = fadedPicture(icon.pixmap(b->iconSize()));
            icon.addPixmap(faded, QIcon::Disabled, QIcon::Off);
            icon.addPixmap(faded, QIcon::Disabled, QIcon::On);
        }
        b->setIcon(icon);
        b->setCheckable(true);
        // Toggled, not clicked: a screen reader's action on a latching
        // button toggles it without a click. Queued, so that action returns
        // before a tool's own dialog opens. The latch then follows the text.
        connect(
            b, &QPushButton::toggled, this,
            [this, i] {
                toolbar(i);
                updateToolbar();
            },
            Qt::QueuedConnection);
    }
    connect(m_edit, &QTextEdit::cursorPositionChanged, this, [this] { updateToolbar(); });
    connect(m_edit, &QTextEdit::currentCharFormatChanged, this, [this] { updateToolbar(); });
    connect(m_edit, &QTextEdit::selectionChanged, this, [this] { updateToolbar(); });

    auto shortcut = [this](QKeySequence keys, QWidget* scope, std::function<void()> run) {
        auto* s = new QShortcut(keys, scope);
        s->setContext(Qt::WidgetWithChildrenShortcut);
        connect(s, &QShortcut::activated, this, std::move(run));
    };
    shortcut(QKeySequence::Bold, m_edit, [this] { toolbar(Bold); });
    shortcut(QKeySequence::Italic, m_edit, [this] { toolbar(Italic); });
    shortcut(QKeySequence::Underline, m_edit, [this] { toolbar(Underline); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Return), this, [this] { runCommand("OK"); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Enter), this, [this] { runCommand("OK"); });
}

void frmEmail::setUpEditor(const ComposePresets& presets) {
    m_edit->setAcceptRichText(true);
    m_edit->setTabChangesFocus(false);
    QPalette pal = m_edit->palette();
    pal.setColor(QPalette::Base, Qt::black);
    pal.setColor(QPalette::Text, Qt::white);
    m_edit->setPalette(pal);
    QFont f(QString::fromLatin1(frmEmailHtml::kDefaultFont));
    f.setPointSizeF(frmEmailHtml::pointSize(frmEmailHtml::kDefaultSize));
    m_edit->document()->setDefaultFont(f);
    m_edit->setHtml(
        MailDisplayText::decodeBody(ComposeRules::initialDocument(presets), presets.charset));
    if (!presets.quoteHeader.isEmpty()) {
        QTextCursor c(m_edit->document());
        c.movePosition(QTextCursor::Start);
        c.insertHtml(Cp1252::toUnicode(presets.quoteHeader));
        c.movePosition(QTextCursor::Start);
        m_edit->setTextCursor(c);
    }
    m_edit->document()->setModified(false);
}

void frmEmail::setEditorDefaults() {
    QTextCharFormat f;
    f.setForeground(QColor(Qt::white));
    f.setFontFamilies({QString::fromLatin1(frmEmailHtml::kDefaultFont)});
    f.setFontPointSize(frmEmailHtml::pointSize(frmEmailHtml::kDefaultSize));
    m_edit->mergeCurrentCharFormat(f);
    m_edit->setFocus();
    updateToolbar();
}

void frmEmail::onShown() {
    if (m_placement.isValid())
        move(m_placement.topLeft());
}

void frmEmail::buttonClicked(int index) {
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    runCommand(b.command);
}

void frmEmail::runCommand(const QByteArray& command) {
    const QByteArray upper = command.trimmed().toUpper();
    if (upper == "OK")
        send();
    else if (upper == "QUIT")
        quit();
    else if (upper == "EMAILTO")
        pick(m_to);
    else if (upper == "EMAILCC")
        pick(m_cc);
    else if (upper == "EMAILBCC")
        pick(m_bcc);
    else
        startProgram(command);
}

void frmEmail::pick(QLineEdit* box) {
    if (!m_picker)
        return;
    const QByteArray picked = m_picker();
    box->setText(
        Cp1252::toUnicode(AddressPicker::appendTo(Cp1252::fromUnicode(box->text()), picked)));
}

void frmEmail::quit() {
    // Typed text is not thrown away by a mis-click.
    const bool typed = m_edit->document()->isModified() ||
                       Cp1252::fromUnicode(m_subject->text()) != m_presetSubject;
    if (typed && !m_messages.askYesNo(kDiscard, kMessageTitle))
        return;
    m_menu->close();
    finish();
}

void frmEmail::send() {
    if (m_to->text().trimmed().isEmpty()) {
        m_messages.showMessage(ComposeRules::kEmptyTo, kMessageTitle,
                               MessageSink::Icon::Information);
        return;
    }
    const qsizetype account =
        m_account->currentIndex() < 0 ? -1 : qsizetype(m_account->currentData().toLongLong());
    if (account < 0 || account >= m_accounts.size()) {
        m_messages.showMessage(ComposeRules::kNoAccount, kMessageTitle,
                               MessageSink::Icon::Information);
        return;
    }
    OutgoingMessage m;
    m.html = frmEmailHtml::serialise(*m_edit->document());
    m.text = HTML2Text(frmEmailHtml::serialise(*m_edit->document(), true));
    m.to = Cp1252::fromUnicode(m_to->text().trimmed());
    m.cc = Cp1252::fromUnicode(m_cc->text().trimmed());
    m.bcc = Cp1252::fromUnicode(m_bcc->text().trimmed());
    m.subject = Cp1252::fromUnicode(m_subject->text());
    m.from = OutboxMessage::senderKey(m_accounts.at(account));
    m.date = ComposeRules::dateText(m_now(), m_zone);
    for (int i = 0; i < m_attachments->count(); ++i)
        m.attachments.append(m_attachments->item(i)->toolTip());
    const OutgoingMessageStore::Result r =
        OutgoingMessageStore(m_store).StoreOutgoingMessage(m, "1");
    if (!r.id)
        return; // the store has said why; the text stays in the window
    if (!r.error.isEmpty())
        m_messages.showMessage(r.error, kMessageTitle, MessageSink::Icon::Warning);
    m_sent = true;
    m_menu->close();
    finish();
}

void frmEmail::addAttachment(const QString& path) {
    if (path.isEmpty())
        return;
    for (int i = 0; i < m_attachments->count(); ++i)
        if (m_attachments->item(i)->toolTip() == path)
            return;
    auto* item = new QListWidgetItem(ComposeRules::attachmentDisplayName(path), m_attachments);
    item->setToolTip(path);
}

void frmEmail::toolbar(int i) {
    QTextCursor c = m_edit->textCursor();
    QTextCharFormat f;
    const QTextCharFormat now = m_edit->currentCharFormat();
    switch (i) {
    case FormatMenu:
        m_menu->showState(currentFormat(), true);
        m_menu->popup(m_tools[FormatMenu]->mapToGlobal(QPoint(0, m_tools[FormatMenu]->height())));
        break;
    case Bold:
        f.setFontWeight(now.fontWeight() >= QFont::Bold ? QFont::Normal : QFont::Bold);
        m_edit->mergeCurrentCharFormat(f);
        break;
    case Italic:
        f.setFontItalic(!now.fontItalic());
        m_edit->mergeCurrentCharFormat(f);
        break;
    case Underline:
        f.setFontUnderline(!now.fontUnderline());
        m_edit->mergeCurrentCharFormat(f);
        break;
    case Colour:
        chooseColour();
        break;
    case Numbered:
        toggleList(QTextListFormat::ListDecimal);
        break;
    case Bulleted:
        toggleList(QTextListFormat::ListDisc);
        break;
    case Outdent:
        indent(-1);
        break;
    case Indent:
        indent(1);
        break;
    case AlignLeft:
        m_edit->setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
        break;
    case AlignCentre:
        m_edit->setAlignment(Qt::AlignHCenter);
        break;
    case AlignRight:
        m_edit->setAlignment(Qt::AlignRight | Qt::AlignAbsolute);
        break;
    case Rule: {
        QTextBlockFormat hr;
        hr.setProperty(QTextFormat::BlockTrailingHorizontalRulerWidth,
                       QTextLength(QTextLength::PercentageLength, 100));
        c.beginEditBlock();
        c.insertBlock(hr);
        c.insertBlock(QTextBlockFormat());
        c.endEditBlock();
        m_edit->setTextCursor(c);
        break;
    }
    case Link:
        insertLink();
        break;
    case Image:
        insertImage();
        break;
    case Attach:
        if (m_filePrompt)
            addAttachment(m_filePrompt());
        break;
    default:
        break;
    }
    if (i != FormatMenu)
        m_edit->setFocus();
    updateToolbar();
}

void frmEmail::chooseColour() {
    const std::optional<QColor> c = m_colourPrompt ? m_colourPrompt() : std::nullopt;
    if (!c)
        return;
    QTextCharFormat f;
    f.setForeground(*c);
    m_edit->mergeCurrentCharFormat(f);
}

void frmEmail::toggleList(int style) {
    QTextCursor c = m_edit->textCursor();
    if (QTextList* list = c.currentList()) {
        if (list->format().style() == style) {
            // The same button again ends the list for these lines.
            QTextBlockFormat bf = c.blockFormat();
            list->remove(c.block());
            bf.setObjectIndex(-1);
            bf.setIndent(0);
            c.setBlockFormat(bf);
            return;
        }
        QTextListFormat lf = list->format();
        lf.setStyle(QTextListFormat::Style(style));
        list->setFormat(lf);
        return;
    }
    c.createList(QTextListFormat::Style(style));
}

void frmEmail::indent(int step) {
    QTextCursor c = m_edit->textCursor();
    if (QTextList* list = c.currentList(); list && step < 0) {
        list->remove(c.block());
        QTextBlockFormat bf = c.blockFormat();
        bf.setIndent(0);
        c.setBlockFormat(bf);
        return;
    }
    QTextBlockFormat bf = c.blockFormat();
    bf.setIndent(qMax(0, bf.indent() + step));
    c.setBlockFormat(bf);
}

void frmEmail::insertLink() {
    QTextCursor c = m_edit->textCursor();
    const QString href =
        m_textPrompt ? m_textPrompt(tr("Link address:"), QStringLiteral("http://")) : QString();
    if (href.trimmed().isEmpty() || href.trimmed() == QLatin1String("http://"))
        return;
    QTextCharFormat f;
    f.setAnchor(true);
    f.setAnchorHref(href.trimmed());
    f.setFontUnderline(true);
    f.setForeground(QColor(0x66, 0xcc, 0xff));
    if (c.hasSelection())
        c.mergeCharFormat(f);
    else
        c.insertText(href.trimmed(), f);
}

void frmEmail::insertImage() {
    const QString src = m_textPrompt
                            ? m_textPrompt(tr("Picture address (http:// or https://):"), QString())
                            : QString();
    const QUrl url(src.trimmed());
    if (src.trimmed().isEmpty())
        return;
    const QString scheme = url.scheme().toLower();
    if (scheme != QLatin1String("http") && scheme != QLatin1String("https")) {
        m_messages.showMessage(kLocalPicture, kMessageTitle, MessageSink::Icon::Information);
        return;
    }
    QTextImageFormat img;
    img.setName(url.toString());
    m_edit->textCursor().insertImage(img);
}

QString frmEmail::currentFormat() const {
    const QTextBlockFormat bf = m_edit->textCursor().blockFormat();
    if (bf.headingLevel() > 0)
        return QStringLiteral("Heading %1").arg(qMin(bf.headingLevel(), 6));
    if (bf.nonBreakableLines())
        return QStringLiteral("Formatted");
    return QStringLiteral("Normal");
}

void frmEmail::applyFormat(const QString& caption) {
    QTextCursor c = m_edit->textCursor();
    c.beginEditBlock();
    QTextBlockFormat bf = c.blockFormat();
    int level = 0;
    if (caption.startsWith(QLatin1String("Heading ")))
        level = qBound(1, caption.mid(8).toInt(), 6);
    bf.setHeadingLevel(level);
    bf.setNonBreakableLines(caption == QLatin1String("Formatted"));
    c.setBlockFormat(bf);
    // The look follows the format over the whole paragraph.
    QTextCursor block(c.block());
    block.select(QTextCursor::BlockUnderCursor);
    QTextCharFormat f;
    static const int kHeadingSizes[] = {6, 5, 4, 3, 2, 1};
    f.setFontWeight(level > 0 ? QFont::Bold : QFont::Normal);
    f.setFontPointSize(
        frmEmailHtml::pointSize(level > 0 ? kHeadingSizes[level - 1] : frmEmailHtml::kDefaultSize));
    f.setFontFamilies({caption == QLatin1String("Formatted")
                           ? QStringLiteral("Courier New")
                           : QString::fromLatin1(frmEmailHtml::kDefaultFont)});
    block.mergeCharFormat(f);
    c.mergeBlockCharFormat(f);
    c.endEditBlock();
    m_edit->setFocus();
    updateToolbar();
}

void frmEmail::setLatched(int tool, bool enabled, bool latched) {
    if (QPushButton* b = m_tools[size_t(tool)]) {
        const QSignalBlocker quiet(b);
        b->setEnabled(enabled);
        b->setChecked(enabled && latched);
    }
}

void frmEmail::updateToolbar() {
    const QTextCharFormat cf = m_edit->currentCharFormat();
    const QTextCursor c = m_edit->textCursor();
    const QTextList* list = c.currentList();
    const int style = list ? list->format().style() : 0;
    const Qt::Alignment a = c.blockFormat().alignment();
    setLatched(Bold, true, cf.fontWeight() >= QFont::Bold);
    setLatched(Italic, true, cf.fontItalic());
    setLatched(Underline, true, cf.fontUnderline() && !cf.isAnchor());
    setLatched(Numbered, true, style == QTextListFormat::ListDecimal);
    setLatched(Bulleted, true, list && style != QTextListFormat::ListDecimal);
    setLatched(Outdent, list || c.blockFormat().indent() > 0, false);
    setLatched(Indent, true, false);
    setLatched(AlignLeft, true, !(a & (Qt::AlignHCenter | Qt::AlignRight)));
    setLatched(AlignCentre, true, bool(a & Qt::AlignHCenter));
    setLatched(AlignRight, true, bool(a & Qt::AlignRight));
    setLatched(Link, c.hasSelection() || cf.isAnchor(), cf.isAnchor());
    for (int t : {int(FormatMenu), int(Colour), int(Rule), int(Image), int(Attach)})
        setLatched(t, true, false);
    const int size = frmEmailHtml::htmlSize(cf.fontPointSize() > 0 ? cf.fontPointSize()
                                                                   : frmEmailHtml::pointSize(3));
    m_size->setCurrentIndex(size - 1);
}

void frmEmail::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        runCommand("QUIT");
        return;
    }
    SkinHost::keyPressEvent(event);
}

} // namespace mirel
