#include "mail/view/EmailScreen.h"

#include "mail/mime/MailDisplayText.h"
#include "mail/store/MailStore.h"
#include "mail/view/MessageHeaderText.h"
#include "mail/view/MessageListLine.h"
#include "platform/Cp1252.h"
#include "ui/SkinHost.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QHeaderView>
#include <QImage>
#include <QListWidget>
#include <QPointer>
#include <QStyle>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTreeWidget>

namespace mirel {

namespace {

// Mail is read offline: the page may name pictures or style sheets on the
// network or on this disk, and none of them is fetched. The answer must be
// a value, and for a picture a picture: for no value, or bytes that are no
// picture, the document opens the named file itself, and a message naming
// /dev/zero or a pipe would never return.
class OfflineBrowser : public QTextBrowser {
public:
    using QTextBrowser::QTextBrowser;
    QVariant loadResource(int type, const QUrl&) override {
        if (type != QTextDocument::ImageResource)
            return QByteArray();
        static const QImage kNothing = [] {
            QImage i(1, 1, QImage::Format_ARGB32);
            i.fill(Qt::transparent);
            return i;
        }();
        return kNothing;
    }
};

// Tool tips show anything that looks like markup as rich text, pictures
// included; a name from a message is shown as the characters it is.
QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

// Rows are added in batches, and pending events run between them, so a
// long folder fills visibly without repainting once per row.
constexpr int kFillBatch = 100;

// Stored text ends its lines in CR LF; the text box wants one break per line.
QString lines(QString text) {
    return text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

double distance(const QColor& a, const QColor& b) {
    const int dr = a.red() - b.red(), dg = a.green() - b.green(), db = a.blue() - b.blue();
    return dr * dr + dg * dg + db * db;
}

} // namespace

EmailScreen::EmailScreen(SkinHost& host, MailStore& store)
    : m_host(host), m_store(store),
      m_openLink([](const QUrl& url) { QDesktopServices::openUrl(url); }), m_view(store) {

    m_list = new QTreeWidget(&host);
    m_list->setObjectName(QStringLiteral("MLmessages"));
    m_list->setAccessibleName(QStringLiteral("MLmessages"));
    m_list->setColumnCount(9);
    m_list->setHeaderHidden(true);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->hide();
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setTextElideMode(Qt::ElideRight);
    connect(m_list, &QTreeWidget::itemClicked, this, [this] { MessageListClick(); });
    // The keyboard and screen readers choose a row without a click; a mouse
    // press is left to the click that follows it.
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (!m_filling && QApplication::mouseButtons() == Qt::NoButton &&
            m_list->selectedItems().size() == 1)
            MessageListClick();
    });

    m_browser = new OfflineBrowser(&host);
    m_browser->setObjectName(QStringLiteral("wbEmail"));
    m_browser->setAccessibleName(QStringLiteral("wbEmail"));
    m_browser->setOpenLinks(false);
    m_browser->setFrameShape(QFrame::NoFrame);
    // Pages are made dark; the default link blue would hardly read on them.
    QPalette links = m_browser->palette();
    links.setColor(QPalette::Link, QColor(110, 180, 255));
    links.setColor(QPalette::LinkVisited, QColor(190, 150, 255));
    m_browser->setPalette(links);
    m_browser->hide();
    connect(m_browser, &QTextBrowser::anchorClicked, this, &EmailScreen::linkClicked);

    m_text = new QTextEdit(&host);
    m_text->setObjectName(QStringLiteral("rtfEmail"));
    m_text->setAccessibleName(QStringLiteral("rtfEmail"));
    m_text->setReadOnly(true);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->hide();

    m_attachments = new QListWidget(&host);
    m_attachments->setObjectName(QStringLiteral("lvAttachments"));
    m_attachments->setAccessibleName(QStringLiteral("lvAttachments"));
    m_attachments->setViewMode(QListView::IconMode);
    m_attachments->setIconSize(QSize(32, 32));
    m_attachments->setGridSize(QSize(96, 60));
    m_attachments->setMovement(QListView::Static);
    m_attachments->setFrameShape(QFrame::NoFrame);
    m_attachments->hide();

    host.setPlaced(PlacedPart::MessageList, m_list);
    host.setPlaced(PlacedPart::HtmlView, m_browser);
    host.setPlaced(PlacedPart::MessageBody, m_text);
    host.setPlaced(PlacedPart::AttachmentList, m_attachments);
}

EmailScreen::~EmailScreen() = default;

void EmailScreen::ShowEmailScreen() {
    m_list->clearSelection();
    m_view.setShownRow(-1);
    m_lines.clear();
    m_lines = m_store.FillMessageListLines(m_view.currentFolder());
    FillMessageList();
    ClearMessageView();
}

QColor EmailScreen::unreadColour(const QColor& fore, const QColor& back) {
    // Amber for new mail; a sky blue when the skin's own colours are close to it.
    const QColor candidates[] = {QColor(255, 190, 40), QColor(80, 170, 255), QColor(230, 60, 60)};
    for (const QColor& c : candidates)
        if (distance(c, fore) > 12000 && distance(c, back) > 12000)
            return c;
    return candidates[0];
}

void EmailScreen::rowColours(QTreeWidgetItem* item, bool read) const {
    const QPalette pal = m_list->palette();
    const QColor fore = pal.color(QPalette::Text);
    const QColor colour = read ? fore : unreadColour(fore, pal.color(QPalette::Base));
    for (int c = 0; c < 9; ++c) {
        item->setBackground(c, pal.color(QPalette::Base));
        item->setForeground(c, colour);
    }
}

void EmailScreen::FillMessageList() {
    m_list->clear();
    const auto widths = MessageListLine::columnWidths(m_list->width());
    for (int c = 0; c < 9; ++c)
        m_list->setColumnWidth(c, widths[size_t(c)]);

    QPointer<QTreeWidget> list(m_list);
    m_filling = true;
    QList<QTreeWidgetItem*> batch;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        bool read = false;
        auto* item = new QTreeWidgetItem(MessageListLine::columnsOf(m_lines[i], &read));
        rowColours(item, read);
        batch.append(item);
        if (batch.size() == kFillBatch || i + 1 == m_lines.size()) {
            m_list->addTopLevelItems(batch);
            batch.clear();
            QCoreApplication::processEvents();
            if (list.isNull())
                return; // the screen was taken down meanwhile
        }
    }
    m_filling = false;
}

void EmailScreen::setMessageButtonsVisible(bool visible) {
    for (int index : m_host.state().tables.mailButtons)
        if (SkinButton* b = m_host.button(index))
            b->setVisible(visible);
}

void EmailScreen::showBlankPage() {
    m_browser->clear();
    const QByteArray blank = [&] {
        QFile f(m_view.blankPagePath());
        return f.open(QIODevice::ReadOnly) ? f.readAll() : MailStore::kBlankPage;
    }();
    m_browser->setHtml(Cp1252::toUnicode(blank));
}

void EmailScreen::ClearMessageView() {
    m_attachments->hide();
    if (QWidget* frame = m_host.placedIfAny(PlacedPart::HtmlFrame))
        frame->hide();
    m_browser->hide();
    m_text->hide();
    setMessageButtonsVisible(false);
    showBlankPage();
    showHeaders({});
}

void EmailScreen::showHeaders(const QString& text) {
    // Only where the theme placed a header panel.
    if (auto* panel = qobject_cast<QLabel*>(m_host.placedIfAny(PlacedPart::MessageHeader)))
        panel->setText(text);
}

void EmailScreen::MessageListClick() {
    QTreeWidgetItem* item = m_list->currentItem();
    if (!item || !item->isSelected()) {
        const QList<QTreeWidgetItem*> selected = m_list->selectedItems();
        item = selected.isEmpty() ? item : selected.first();
    }
    const int row = item ? m_list->indexOfTopLevelItem(item) : -1;
    m_view.setShownRow(row);
    if (row < 0 || row >= m_lines.size() || m_lines[row].isEmpty())
        return;
    m_lines[row] = MessageListLine::markedRead(m_lines[row]);
    rowColours(item, true);
    QPointer<QTreeWidget> list(m_list);
    QCoreApplication::processEvents();
    if (list.isNull() || row >= m_lines.size())
        return;
    ShowMessage(m_view.currentFolder(), MessageListLine::parse(m_lines[row]).messageId());
}

void EmailScreen::ShowMessage(QByteArrayView folder, qint32 id) {
    const ShownMessage& m = m_view.ShowMessage(folder, id);
    m_text->setTextColor(m_list->palette().color(QPalette::Text));
    m_text->clear();
    if (!m.text.isEmpty())
        m_text->setPlainText(lines(MailDisplayText::decodeBody(m.text, m.textCharset)));

    // What is on disk is the page byte for byte; the screen reads it in the
    // charset the message declares.
    m_browser->setHtml(MailDisplayText::decodeBody(m.page, m.charset));
    showHeaders(messageHeaderText(m.headers));

    m_attachments->clear();
    const QIcon icon = m_host.style()->standardIcon(QStyle::SP_FileIcon);
    for (const QByteArray& name : m.attachmentNames) {
        const QString shown = MailDisplayText::decodeHeader(name);
        auto* item = new QListWidgetItem(icon, MessageView::attachmentCaption(shown));
        item->setToolTip(plainToolTip(shown));
        m_attachments->addItem(item);
    }
    ShowMessageControls();
}

void EmailScreen::ShowMessageSource() {
    m_view.ShowMessageSource();
    m_text->setTextColor(m_list->palette().color(QPalette::Text));
    m_text->setPlainText(lines(Cp1252::toUnicode(m_view.current().headers)));
    ShowMessageControls();
}

void EmailScreen::ShowMessageControls() {
    setMessageButtonsVisible(true);
    QWidget* frame = m_host.placedIfAny(PlacedPart::HtmlFrame);
    const bool page = !m_view.current().page.isEmpty();
    m_browser->setVisible(page);
    if (frame)
        frame->setVisible(page);
    m_text->setVisible(!page);
    (page ? static_cast<QWidget*>(m_browser) : m_text)->raise();
    m_attachments->setVisible(true);
}

void EmailScreen::linkClicked(const QUrl& url) {
    // A relative or local link of a message leads nowhere.
    const QUrl outside = MessageView::outsideLink(url);
    if (!outside.isEmpty())
        m_openLink(outside);
}

} // namespace mirel
