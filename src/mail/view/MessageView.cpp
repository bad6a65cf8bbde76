#include "mail/view/MessageView.h"

#include "mail/store/BodyCharsets.h"
#include "mail/store/MailStore.h"
#include "mail/view/MessagePage.h"

#include <QSaveFile>

namespace mirel {

MessageView::MessageView(MailStore& store) : m_store(store) {}

QByteArray MessageView::currentFolder() const {
    return m_folder.isEmpty() ? MailStore::kInbox : m_folder;
}

void MessageView::clear() {
    m_shownRow = -1;
    m_current = ShownMessage{};
}

QString MessageView::pagePath() const {
    return m_store.mailRoot() + QStringLiteral("tmp.html");
}

QString MessageView::blankPagePath() const {
    return m_store.blankPagePath();
}

const ShownMessage& MessageView::ShowMessage(QByteArrayView folder, qint32 id) {
    ShownMessage m;
    m.id = id;
    if (const auto row = m_store.readMessageRow(folder, id)) {
        m.text = row->text;
        m.headers = row->headers;
        m.page = row->html;
    }
    if (const auto index = m_store.readIndexRow(folder, id)) {
        m_store.setReaded(folder, id, 1);
        m.from = index->from;
        m.to = index->to;
        m.subject = index->subject;
        m.date = index->date;
        m.attachments = index->attachments;
    }

    m.summary = "From:\t\t" + m.from + "\r\nTo: \t\t" + m.to + "\r\nSubject:\t\t" + m.subject +
                "\r\nDate:\t\t" + m.date + "\r\n \r\n";
    // The charset is read before the page is built: building drops the
    // HTML's own head, where a meta tag declares it.
    m.charset = MessagePage::displayCharset(m.page, m.headers);
    // What the shown body's own part declared beats a guess from the top.
    const BodyCharsets declared = BodyCharsets::read(m_store, folder, id);
    if (const QByteArray& own = m.page.isEmpty() ? declared.text : declared.html; !own.isEmpty())
        m.charset = own;
    m.textCharset = declared.text.isEmpty() ? m.charset : declared.text;
    m.page = MessagePage::build(m.text, m.page);

    QSaveFile file(pagePath());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(m.page + "\r\n");
        file.commit();
    }

    m.summary += m.text + "\r\n\r\n";
    if (m.attachments > 0) {
        m.summary += "Attachments:\r\n";
        for (const AttachmentRow& a : m_store.readAttachments(folder, id)) {
            m.attachmentNames.append(attachmentName(a.filename));
            m.summary += m.attachmentNames.last() + "\r\n";
        }
    }
    m_current = std::move(m);
    return m_current;
}

QByteArray MessageView::attachmentName(QByteArrayView view) {
    const QByteArray filename = view.toByteArray();
    const qsizetype open = filename.indexOf('"');
    if (open < 0)
        return filename;
    const qsizetype close = filename.indexOf('"', open + 1);
    return close < 0 ? filename.mid(open + 1) : filename.mid(open + 1, close - open - 1);
}

QString MessageView::attachmentCaption(const QString& name) {
    return name.left(12);
}

} // namespace mirel
