#include "organiser/NotesBook.h"

#include "organiser/TextFile.h"

namespace mirel {

void NotesBook::load(OrganiserState& st) const {
    st.lstSorted1.clear();
    const QString dir = folder();
    const QStringList files = TextFile::listFolder(dir);
    QList<ListEntry> entries;
    for (int i = 0; i < files.size(); ++i) {
        QString error;
        const auto title = TextFile::readFirstLine(dir + QLatin1Char('/') + files[i], &error);
        if (!title) {
            m_ctx.reportFileError(error);
            continue; // the other notes stay listed
        }
        entries.append({*title + kFieldSep + files[i].toLocal8Bit(), i});
    }
    st.lstSorted1.addAll(entries);
    st.rows.clear();
    for (const ListEntry& e : st.lstSorted1.entries())
        if (!e.text.isEmpty())
            st.rows.add(beforeSep(e.text), e.itemData);
    st.listSound = m_ctx.listSound("NOTES");
    st.selection = -1;
}

void NotesBook::show(const OrganiserState& st, int i, EditBoxes& boxes) const {
    const QByteArray entry = st.lstSorted1.text(i);
    boxes.title.clear();
    boxes.body.clear();
    if (entry.isEmpty())
        return;
    boxes.title = beforeSep(entry);
    if (const auto lines = m_ctx.readItem(folder(), afterSep(entry)))
        boxes.body = bodyFromLines(*lines, 1);
}

bool NotesBook::save(OrganiserState& st, EditBoxes& boxes) const {
    if (!m_ctx.itemFolderPresent("Notes"))
        return false;
    const QString dir = folder();
    const QByteArray title = boxes.title.isEmpty() ? QByteArray("New Note") : boxes.title;
    const QByteArray name = st.selection < 0 ? freeStampName(dir, m_ctx.clock.now(), ".not")
                                             : afterSep(st.lstSorted1.text(st.selection));
    if (boxes.body.isEmpty())
        boxes.body = "---";
    QString error;
    if (name.isEmpty() || !TextFile::write(dir + QLatin1Char('/') + QString::fromLocal8Bit(name),
                                           title + "\r\n" + boxes.body + "\r\n", &error)) {
        m_ctx.reportFileError(error);
        return false;
    }
    reset(st, boxes);
    return true;
}

bool NotesBook::remove(OrganiserState& st, EditBoxes& boxes) const {
    if (boxes.title.isEmpty() || st.selection < 0)
        return false;
    if (!m_ctx.confirmDelete())
        return false;
    const QString path = folder() + QLatin1Char('/') +
                         QString::fromLocal8Bit(afterSep(st.lstSorted1.text(st.selection)));
    st.lstSorted1.removeAt(st.selection);
    m_ctx.deleteFile(path);
    reset(st, boxes);
    return true;
}

} // namespace mirel
