#include "mail/view/SelectedMessages.h"

#include "mail/store/MailStore.h"
#include "mail/view/MessageListLine.h"

#include <algorithm>

namespace mirel {

SelectedMessages::SelectedMessages(MailStore& store, QByteArray folder, QList<QByteArray>& lines)
    : m_store(store), m_folder(folder.isEmpty() ? MailStore::kInbox : std::move(folder)),
      m_lines(lines) {}

QString SelectedMessages::deleteQuestion(qsizetype count) {
    return QStringLiteral("Are you sure to delete %1 Message(s)?").arg(count);
}

template <typename Step> QList<int> SelectedMessages::walk(QList<int> rows, Step&& step) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    QList<int> done;
    for (int row : rows) {
        // Rows above this one have left the list already.
        const int now = row - int(done.size());
        if (row < 0 || now >= m_lines.size())
            continue;
        if (!step(MessageListLine::parse(m_lines[now]).messageId()))
            break;
        m_lines.removeAt(now);
        done.append(row);
    }
    return done;
}

QList<int> SelectedMessages::move(const QList<int>& rows, QByteArrayView target) {
    if (target.isEmpty() || target == m_folder)
        return {};
    return walk(rows,
                [&](qint32 id) { return m_store.MoveMessage(m_folder, target, id).has_value(); });
}

QList<int> SelectedMessages::remove(const QList<int>& rows) {
    if (m_folder == MailStore::kDeleted)
        return walk(rows, [&](qint32 id) { return m_store.DeleteMessage(m_folder, id); });
    return move(rows, MailStore::kDeleted);
}

} // namespace mirel
