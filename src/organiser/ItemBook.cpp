#include "organiser/ItemBook.h"

#include <QFileInfo>

namespace mirel {

QByteArray freeStampName(const QString& folder, const QDateTime& when, const char* extension) {
    for (QDateTime t = when;; t = t.addSecs(1)) {
        const QByteArray name = t.toString(QStringLiteral("yyyyMMddHHmmss")).toLatin1() + extension;
        if (!QFileInfo::exists(folder + QLatin1Char('/') + QString::fromLatin1(name)))
            return name;
    }
}

QByteArray bodyFromLines(const QList<QByteArray>& lines, int skip) {
    QByteArray body;
    for (qsizetype i = skip; i < lines.size(); ++i)
        body += lines[i] + "\r\n";
    return body;
}

void ItemBook::add(OrganiserState& st, EditBoxes& boxes) const {
    show(st, -1, boxes);
    st.selection = -1;
    boxes.focusFirstBox = true;
}

void ItemBook::click(OrganiserState& st, int row, EditBoxes& boxes) const {
    const bool valid = !st.rows.text(row).isEmpty();
    st.selection = qint16(valid ? row : -1);
    show(st, st.selection, boxes);
}

void ItemBook::reset(OrganiserState& st, EditBoxes& boxes) const {
    load(st);
    show(st, -1, boxes);
    st.selection = -1;
    m_ctx.refreshOverview();
}

} // namespace mirel
