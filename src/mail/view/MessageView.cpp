#include "mail/view/MessageView.h"

#include "mail/store/BodyCharsets.h"
#include "mail/store/MailStore.h"
#include "mail/view/MessagePage.h"

#include <QFile>
#include <QUrlQuery>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirel {
namespace {

bool writeAll(int fd, QByteArrayView bytes) {
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.data() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += n;
    }
    return true;
}

// The page is scratch, rebuilt from the store whenever a message opens: it
// must never be seen half written, but it need not survive a power cut, so
// it is replaced in one rename without waiting for the disk. A new page is
// the owner's alone; one that exists keeps the mode it has. One program runs
// per user, so the part file's name needs no uniqueness of its own.
void writeScratchPage(const QString& path, const QByteArray& page) {
    const QByteArray target = QFile::encodeName(path);
    const QByteArray part = target + ".part";
    struct stat existing {};
    const bool exists = ::stat(target.constData(), &existing) == 0;
    const mode_t mode = exists ? existing.st_mode & 07777 : 0600;
    ::unlink(part.constData()); // a leftover may belong to someone else or be a link
    const int fd = ::open(part.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0)
        return;
    // The line end goes in a write of its own: appending it would copy the page.
    bool ok = ::fchmod(fd, mode) == 0 && writeAll(fd, page) && writeAll(fd, "\r\n");
    ok = ::close(fd) == 0 && ok;
    // Swapping the two names rather than renaming over the old page: some
    // file systems take a rename onto an existing file as a sign that the
    // new one must reach the disk soon, and start writing it out there and
    // then, which a scratch page does not need. The old page, now under the
    // part name, goes unwritten.
    if (ok && exists && S_ISREG(existing.st_mode) &&
        ::renameat2(AT_FDCWD, part.constData(), AT_FDCWD, target.constData(), RENAME_EXCHANGE) ==
            0) {
        ::unlink(part.constData());
        return;
    }
    if (!ok || ::rename(part.constData(), target.constData()) != 0)
        ::unlink(part.constData());
}

} // namespace

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

namespace {

// The rows read file by file, each read reporting its own failure: what a
// message shows when one of its files cannot be read in one go.
ViewedRows readOneByOne(MailStore& store, QByteArrayView folder, qint32 id) {
    ViewedRows rows;
    rows.message = store.readMessageRow(folder, id);
    rows.index = store.readIndexRow(folder, id);
    rows.charsets = BodyCharsets::read(store, folder, id);
    if (rows.index && rows.index->attachments > 0)
        for (const AttachmentRow& a : store.readAttachments(folder, id))
            rows.attachmentNames.push_back(a.filename);
    return rows;
}

} // namespace

const ShownMessage& MessageView::ShowMessage(QByteArrayView folder, qint32 id) {
    std::optional<ViewedRows> read = m_store.readForView(folder, id);
    const ViewedRows rows = read ? std::move(*read) : readOneByOne(m_store, folder, id);
    ShownMessage m;
    m.id = id;
    if (const auto& row = rows.message) {
        m.text = row->text;
        m.headers = row->headers;
        m.page = row->html;
    }
    if (const auto& index = rows.index) {
        if (index->readed != 1) // opening a read message again writes nothing
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
    if (const QByteArray& own = m.page.isEmpty() ? rows.charsets.text : rows.charsets.html;
        !own.isEmpty())
        m.charset = own;
    m.textCharset = rows.charsets.text.isEmpty() ? m.charset : rows.charsets.text;
    m.page = MessagePage::build(m.text, m.page);

    writeScratchPage(pagePath(), m.page);

    m.summary += m.text + "\r\n\r\n";
    if (m.attachments > 0) {
        m.summary += "Attachments:\r\n";
        for (const QByteArray& filename : rows.attachmentNames) {
            m.attachmentNames.append(attachmentName(filename));
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

QUrl MessageView::outsideLink(const QUrl& link) {
    const QString scheme = link.scheme().toLower();
    if (scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
        scheme == QLatin1String("ftp"))
        return link;
    if (scheme != QLatin1String("mailto"))
        return {};
    static const QStringList kFields = {QStringLiteral("to"),   QStringLiteral("cc"),
                                        QStringLiteral("bcc"),  QStringLiteral("subject"),
                                        QStringLiteral("body"), QStringLiteral("in-reply-to")};
    QUrlQuery kept;
    for (const auto& [key, value] : QUrlQuery(link).queryItems(QUrl::FullyDecoded))
        if (kFields.contains(key.toLower()))
            kept.addQueryItem(key, value);
    QUrl out;
    out.setScheme(QStringLiteral("mailto"));
    // An encoded "?" in the address would start fields of its own once the
    // mail program decodes it.
    out.setPath(link.path(QUrl::FullyDecoded).section(QLatin1Char('?'), 0, 0));
    out.setQuery(kept);
    return out;
}

QString MessageView::attachmentCaption(const QString& name) {
    return name.left(12);
}

} // namespace mirel
