#include "organiser/AddressBook.h"

#include "organiser/TextFile.h"
#include "settings/CommaList.h"
#include "settings/TripletCodec.h"

namespace mirel {
namespace {

constexpr int kLines = 17;
// Line n of the file (0-based) holds field kFieldOfLine[n] (0-based).
constexpr int kFieldOfLine[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 14, 15, 12, 13};

} // namespace

QString AddressBook::folder() const {
    return m_ctx.folders.path(QStringLiteral("\\mirel\\addressbook"));
}

std::optional<Contact> AddressBook::read(const QByteArray& fileName) const {
    const QString path = folder() + QLatin1Char('/') + QString::fromLocal8Bit(fileName);
    QString error;
    const auto lines = TextFile::readLines(path, &error);
    if (lines && lines->size() < kLines)
        error = QStringLiteral("\"%1\" is not a contact: it has %2 lines instead of 17")
                    .arg(path)
                    .arg(lines->size());
    if (!lines || lines->size() < kLines) {
        m_ctx.reportFileError(error);
        return std::nullopt;
    }
    Contact c;
    c.fileName = fileName;
    for (int line = 0; line < 16; ++line)
        c.fields[kFieldOfLine[line]] = (*lines)[line];
    c.notes = decodeTriplets((*lines)[16]);
    return c;
}

QByteArray AddressBook::serialise(const Contact& c) {
    QList<QByteArray> lines;
    for (int line = 0; line < 16; ++line)
        lines.append(c.fields[kFieldOfLine[line]]);
    lines.append(encodeTriplets(c.notes));
    return TextFile::joinLines(lines);
}

int AddressBook::nextNumber() const {
    long m = 0;
    for (const QString& name : TextFile::listFolder(folder())) {
        const long n = leadingNumber(name.toLatin1());
        if (n >= m && n < INT_MAX)
            m = n + 1;
    }
    return int(m);
}

void AddressBook::load(OrganiserState& st) const {
    st.lstSorted1.clear();
    const QString dir = folder();
    QList<ListEntry> entries;
    for (const QString& file : TextFile::listFolder(dir)) {
        QString error;
        const auto first = TextFile::readFirstLine(dir + QLatin1Char('/') + file, &error);
        if (!first) {
            m_ctx.reportFileError(error);
            continue;
        }
        entries.append({*first + kFieldSep + file.toLocal8Bit(), 0});
    }
    st.lstSorted1.addAll(entries);
    st.rows.clear();
    for (qsizetype k = 0; k < st.lstSorted1.size(); ++k)
        st.rows.add(beforeSep(st.lstSorted1.text(k)), int(k));
    st.listSound = m_ctx.listSound("ADDRESS");
    st.selection = -1;
}

void AddressBook::show(const OrganiserState& st, int i, Contact& current) const {
    const QByteArray entry = st.lstSorted1.text(i);
    std::optional<Contact> c;
    if (!entry.isEmpty())
        c = read(afterSep(entry));
    current = c.value_or(Contact{});
}

void AddressBook::add(OrganiserState& st, Contact& current) const {
    show(st, -1, current);
    st.selection = -1;
}

void AddressBook::click(OrganiserState& st, int row, Contact& current) const {
    const bool valid = !st.rows.text(row).isEmpty();
    st.selection = qint16(valid ? st.rows.itemData(row) : -1);
    show(st, st.selection, current);
}

bool AddressBook::save(OrganiserState& st, Contact& current) const {
    if (current.fileName.isEmpty())
        current.fileName = QByteArray::number(nextNumber()) + ".dat";
    if (current.fileName == "-1.dat")
        return false;
    QString error;
    if (!TextFile::write(folder() + QLatin1Char('/') + QString::fromLocal8Bit(current.fileName),
                         serialise(current), &error)) {
        m_ctx.reportFileError(error);
        return false;
    }
    const qint16 keep = st.selection;
    load(st);
    st.selection = keep;
    return true;
}

bool AddressBook::remove(OrganiserState& st, Contact& current) const {
    if (current.fileName.isEmpty() || !m_ctx.confirmDelete())
        return false;
    m_ctx.deleteFile(folder() + QLatin1Char('/') + QString::fromLocal8Bit(current.fileName));
    load(st);
    show(st, -1, current);
    st.selection = -1;
    return true;
}

} // namespace mirel
