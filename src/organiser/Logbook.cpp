#include "organiser/Logbook.h"

#include "organiser/ItemBook.h"
#include "organiser/TextFile.h"
#include "platform/CaseFold.h"

#include <QFile>
#include <QFileInfo>

namespace mirel {

QByteArray Logbook::stampFromDigits(const QByteArray& d) {
    return d.mid(0, 6) + '.' + d.mid(6, 2) + ' ' + d.mid(8, 2) + ':' + d.mid(10, 2) + ':' +
           d.mid(12, 2);
}

QByteArray Logbook::digitsFromStamp(const QByteArray& s) {
    return s.mid(0, 6) + s.mid(7, 2) + s.mid(10, 2) + s.mid(13, 2) + s.mid(16, 2);
}

void Logbook::load(OrganiserState& st, const QByteArray& search) const {
    st.lstSorted1.clear();
    const QString dir = folder();
    QList<ListEntry> taken;
    for (const QString& file : TextFile::listFolder(dir)) {
        QString error;
        const QString path = dir + QLatin1Char('/') + file;
        QByteArray first;
        if (search.isEmpty()) {
            const auto line = TextFile::readFirstLine(path, &error);
            if (line)
                first = *line;
            else
                m_ctx.reportFileError(error);
            if (!line)
                continue;
        } else {
            // Lines joined with nothing between them, so a match may run
            // across a line break.
            const auto lines = TextFile::readLines(path, &error);
            if (!lines) {
                m_ctx.reportFileError(error);
                continue;
            }
            first = lines->value(0);
            if (!containsNoCase(lines->join(), search))
                continue;
        }
        taken.append({file.toLocal8Bit() + kFieldSep + first, int(taken.size())});
    }
    st.lstSorted1.addAll(taken);
    st.rows.clear();
    for (qsizetype i = st.lstSorted1.size() - 1; i >= 0; --i) {
        const ListEntry& e = st.lstSorted1.entries()[i];
        if (e.text.isEmpty())
            continue;
        st.rows.add(stampFromDigits(beforeSep(e.text)), e.itemData);
        st.rows.add("   " + afterSep(e.text), e.itemData);
    }
    st.listSound = m_ctx.listSound("LOGBOOK");
    st.selection = -1;
}

void Logbook::show(const OrganiserState& st, int i, EditBoxes& boxes) const {
    const QByteArray entry = st.lstSorted1.text(i);
    boxes.body.clear();
    if (entry.isEmpty()) {
        boxes.stamp = i == -1 ? QByteArray() : stampNow();
        return;
    }
    boxes.stamp = stampFromDigits(beforeSep(entry));
    if (const auto lines = m_ctx.readItem(folder(), beforeSep(entry)))
        boxes.body = bodyFromLines(*lines, 0);
}

void Logbook::add(OrganiserState& st, EditBoxes& boxes) const {
    show(st, -2, boxes);
    st.selection = -2;
    boxes.focusFirstBox = true;
}

void Logbook::click(OrganiserState& st, int row, EditBoxes& boxes) const {
    const bool valid = !st.rows.text(row).isEmpty();
    st.selection = qint16(valid ? st.rows.itemData(row) : -1);
    show(st, st.selection, boxes);
}

void Logbook::search(OrganiserState& st, EditBoxes& boxes) const {
    show(st, -1, boxes);
    load(st, boxes.title);
}

void Logbook::showAll(OrganiserState& st, EditBoxes& boxes) const {
    show(st, -1, boxes);
    load(st, {});
}

void Logbook::reset(OrganiserState& st, EditBoxes& boxes) const {
    load(st, {});
    show(st, -1, boxes);
    st.selection = -1;
    m_ctx.refreshOverview();
}

bool Logbook::save(OrganiserState& st, EditBoxes& boxes) const {
    if (!m_ctx.itemFolderPresent("Logbook"))
        return false;
    const QString dir = folder();
    const QByteArray stamp = boxes.stamp.isEmpty() ? stampNow() : boxes.stamp;
    QByteArray name = digitsFromStamp(stamp) + ".log";
    if (st.selection < 0) {
        // A new entry never takes the file of another one begun in the same second.
        const QDateTime when = QDateTime::fromString(QString::fromLatin1(digitsFromStamp(stamp)),
                                                     QStringLiteral("yyyyMMddHHmmss"));
        if (when.isValid())
            name = freeStampName(dir, when, ".log");
    }
    if (boxes.body.isEmpty())
        boxes.body = "---";
    QString error;
    if (!TextFile::write(dir + QLatin1Char('/') + QString::fromLocal8Bit(name), boxes.body + "\r\n",
                         &error)) {
        m_ctx.reportFileError(error);
        return false;
    }
    reset(st, boxes);
    return true;
}

bool Logbook::remove(OrganiserState& st, EditBoxes& boxes) const {
    if (boxes.stamp.isEmpty() || st.selection < 0)
        return false;
    if (!m_ctx.confirmDelete())
        return false;
    const QString path = folder() + QLatin1Char('/') +
                         QString::fromLocal8Bit(beforeSep(st.lstSorted1.text(st.selection)));
    st.lstSorted1.removeAt(st.selection);
    m_ctx.deleteFile(path);
    reset(st, boxes);
    return true;
}

} // namespace mirel
