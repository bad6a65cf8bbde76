#include "organiser/TodoList.h"

#include "organiser/TextFile.h"

namespace mirel {

void TodoList::load(OrganiserState& st) const {
    st.lstSorted1.clear();
    const QString dir = folder();
    const QStringList files = TextFile::listFolder(dir);
    QList<ListEntry> entries;
    for (int i = 0; i < files.size(); ++i) {
        const auto lines = m_ctx.readItem(dir, files[i].toLocal8Bit());
        if (!lines)
            continue;
        entries.append({lines->value(0) + lines->value(1) + kFieldSep + files[i].toLocal8Bit(), i});
    }
    st.lstSorted1.addAll(entries);
    st.rows.clear();
    for (const ListEntry& e : st.lstSorted1.entries()) {
        if (e.text.isEmpty())
            continue;
        const QByteArray label = e.text.startsWith('0') ? "TODO" : "DONE";
        st.rows.add(label + "  " + beforeSep(e.text).mid(1), e.itemData);
    }
    st.listSound = m_ctx.listSound("TODO");
    st.selection = -1;
}

void TodoList::show(const OrganiserState& st, int i, EditBoxes& boxes) const {
    const QByteArray entry = st.lstSorted1.text(i);
    boxes.body.clear();
    boxes.doneButtonVisible = false;
    if (entry.isEmpty())
        return;
    boxes.doneButtonVisible = entry.startsWith('0');
    if (const auto lines = m_ctx.readItem(folder(), afterSep(entry)))
        boxes.body = bodyFromLines(*lines, 1);
}

bool TodoList::save(OrganiserState& st, EditBoxes& boxes) const {
    if (!m_ctx.itemFolderPresent("Todo"))
        return false;
    const QString dir = folder();
    QByteArray name, status;
    if (st.selection < 0) {
        name = freeStampName(dir, m_ctx.clock.now(), ".tod");
        status = "0";
    } else {
        const QByteArray entry = st.lstSorted1.text(st.selection);
        name = afterSep(entry);
        status = entry.left(1);
    }
    if (boxes.body.isEmpty())
        boxes.body = "---";
    QString error;
    if (name.isEmpty() || !TextFile::write(dir + QLatin1Char('/') + QString::fromLocal8Bit(name),
                                           status + "\r\n" + boxes.body + "\r\n", &error)) {
        m_ctx.reportFileError(error);
        return false;
    }
    reset(st, boxes);
    return true;
}

bool TodoList::markDone(OrganiserState& st, EditBoxes& boxes) const {
    QByteArray entry = st.lstSorted1.text(st.selection);
    if (entry.isEmpty())
        return false;
    entry[0] = '1';
    st.lstSorted1.setText(st.selection, entry);
    return save(st, boxes);
}

bool TodoList::remove(OrganiserState& st, EditBoxes& boxes) const {
    if (boxes.body.isEmpty() || st.selection < 0 || !m_ctx.confirmDelete())
        return false;
    const QString path = folder() + QLatin1Char('/') +
                         QString::fromLocal8Bit(afterSep(st.lstSorted1.text(st.selection)));
    st.lstSorted1.removeAt(st.selection);
    m_ctx.deleteFile(path);
    reset(st, boxes);
    return true;
}

} // namespace mirel
