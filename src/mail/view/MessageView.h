#pragma once
// The message on show and the folder it comes from: the e-mail screen's
// state, kept apart from its widgets.
//
// States: nothing shown (shown row -1, empty values, the viewer on the
// blank page) -> a message shown (its page written to "tmp.html", its row
// marked read in the store) -> source shown (the page emptied, the header
// lines in its place) until another message is opened or the view cleared.
// Opening a message marks it read; nothing makes it unread again.
#include "mail/store/MailRows.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

namespace mirel {

class MailStore;

/// What the view shows of one message.
struct ShownMessage {
    qint32 id = 0;
    QByteArray from, to, subject, date;
    qint32 attachments = 0;
    QByteArray text;
    /// The page as written to "tmp.html"; empty while the source is shown.
    QByteArray page;
    QByteArray headers;
    /// The plain-text summary that printing uses.
    QByteArray summary;
    /// File names of the attachments, in stored order.
    QList<QByteArray> attachmentNames;
    /// What the page's and the text's bytes are read in on screen.
    QByteArray charset;
    QByteArray textCharset;
};

/// ShowMessage, ShowMessageSource and the current folder and row.
class MessageView {
public:
    explicit MessageView(MailStore& store);

    /// The folder key; empty reads as the inbox.
    QByteArray currentFolder() const;
    void setCurrentFolder(QByteArray folder) { m_folder = std::move(folder); }

    int shownRow() const { return m_shownRow; }
    void setShownRow(int row) { m_shownRow = row; }

    const ShownMessage& current() const { return m_current; }

    /// Reads the message, marks it read, builds its page and writes it to
    /// "tmp.html" in the mail root.
    const ShownMessage& ShowMessage(QByteArrayView folder, qint32 id);
    /// The source replaces the page until another message is opened.
    void ShowMessageSource() { m_current.page.clear(); }
    /// Nothing shown: the row is -1 and the values are empty.
    void clear();

    QString pagePath() const;
    QString blankPagePath() const;

    /// The file name in an attachment's stored parameter text: the text
    /// between the first two double quotes, or all of it without quotes.
    static QByteArray attachmentName(QByteArrayView filename);
    /// What a followed link hands to the desktop: web, ftp and mail
    /// addresses only (anything else gives an empty address), and a mail
    /// address keeps only the fields of a new message, so a link cannot
    /// make the mail program attach a local file.
    static QUrl outsideLink(const QUrl& link);
    /// A name cut to the twelve characters an icon caption holds.
    static QString attachmentCaption(const QString& name);

private:
    MailStore& m_store;
    QByteArray m_folder;
    int m_shownRow = -1;
    ShownMessage m_current;
};

} // namespace mirel
