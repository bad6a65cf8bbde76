#pragma once
// The e-mail screen of the main window: the message list of the current
// folder, the view of one message and its attachments. It installs its own
// widgets in the host's placeholders for the mail parts, so the skin places
// and colours them; the logic lives in MessageListLine, MessagePage and
// MessageView.
//
// Invariant: row i of the visible list shows line i of ListMessages; a click
// marks both (and the store) read at once.
#include "mail/view/MessageView.h"

#include <QByteArray>
#include <QColor>
#include <QList>
#include <QObject>
#include <QUrl>
#include <functional>

class QListWidget;
class QTextBrowser;
class QTextEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace mirel {

class MailStore;
class SkinHost;

/// ShowEmailScreen, FillMessageList, MessageListClick, ShowMessage,
/// ShowMessageSource, ClearMessageView over real widgets.
class EmailScreen : public QObject {
    Q_OBJECT
public:
    using LinkOpener = std::function<void(const QUrl&)>;

    /// Links of a shown message go to the desktop's browser.
    EmailScreen(SkinHost& host, MailStore& store);
    ~EmailScreen() override;

    /// Where followed links go instead (tests record them).
    void setLinkOpener(LinkOpener open) { m_openLink = std::move(open); }

    /// Runs after the screen was laid out: fills the list of the current
    /// folder and clears the view.
    void ShowEmailScreen();
    void FillMessageList();
    void ClearMessageView();
    void MessageListClick();
    void ShowMessage(QByteArrayView folder, qint32 id);
    void ShowMessageSource();
    void ShowMessageControls();

    /// The folder the next ShowEmailScreen lists (an overview row chose it).
    void setCurrentFolder(QByteArray folder) { m_view.setCurrentFolder(std::move(folder)); }
    MessageView& view() { return m_view; }
    const QList<QByteArray>& ListMessages() const { return m_lines; }
    /// For the commands that take messages out of the folder.
    QList<QByteArray>& ListMessages() { return m_lines; }

    QTreeWidget* MLmessages() const { return m_list; }
    QTextBrowser* wbEmail() const { return m_browser; }
    QTextEdit* rtfEmail() const { return m_text; }
    QListWidget* lvAttachments() const { return m_attachments; }

    /// The text colour of unread rows: one that stands apart from the
    /// list's own text colour and reads on its background.
    static QColor unreadColour(const QColor& fore, const QColor& back);

private:
    void rowColours(QTreeWidgetItem* item, bool read) const;
    void setMessageButtonsVisible(bool visible);
    void showBlankPage();
    void showHeaders(const QString& text);
    void linkClicked(const QUrl& url);

    SkinHost& m_host;
    MailStore& m_store;
    LinkOpener m_openLink;
    MessageView m_view;
    QList<QByteArray> m_lines;
    QTreeWidget* m_list;
    QTextBrowser* m_browser;
    QTextEdit* m_text;
    QListWidget* m_attachments;
    bool m_filling = false;
};

} // namespace mirel
