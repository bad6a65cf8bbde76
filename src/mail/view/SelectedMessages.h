#pragma once
// Moving and deleting the messages selected in the message list. The rows
// are walked from the top; each message that has left the folder leaves the
// hidden list at once, so line i of the hidden list always shows row i.
// The first failure ends the walk: the store has reported it, the message
// stays complete in one folder, and the rows not yet handled stay selected.
#include <QByteArray>
#include <QList>
#include <QString>

namespace mirel {

class MailStore;

/// MoveSelectedMessages and DeleteSelectedMessages over the hidden list.
class SelectedMessages {
public:
    SelectedMessages(MailStore& store, QByteArray folder, QList<QByteArray>& lines);

    /// The question asked before deleting count messages.
    static QString deleteQuestion(qsizetype count);

    /// Each handles the given rows (positions in the hidden list, any order)
    /// and returns the positions, as they were before, of the rows removed.
    QList<int> move(const QList<int>& rows, QByteArrayView target);
    /// Into the deleted folder, or for good when the folder is that one.
    QList<int> remove(const QList<int>& rows);

private:
    template <typename Step> QList<int> walk(QList<int> rows, Step&& step);

    MailStore& m_store;
    QByteArray m_folder;
    QList<QByteArray>& m_lines;
};

} // namespace mirel
