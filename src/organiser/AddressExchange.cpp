#include "organiser/AddressExchange.h"

#include "organiser/TextFile.h"
#include "skin/ControlLine.h"
#include "skin/SkinLines.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace mirel {
namespace {

const QByteArray kSection = QByteArrayLiteral("ADDRESS");

QByteArray exportValue(QByteArray v) {
    return v.contains(';') ? '"' + v + '"' : v;
}

QString fileText(const QString& path) {
    return QDir::toNativeSeparators(path);
}

// A contact is one small write to a name no file has yet; a write that
// fails takes its file away again, so no half contact stays behind. Renaming
// from a temporary name or syncing each file would make a large import take
// minutes; the folder's file system is synced once at the end instead.
bool writeContact(const QString& dir, int number, const QByteArray& bytes, QString* error) {
    QFile f(dir + QLatin1Char('/') + QString::number(number) + QStringLiteral(".dat"));
    if (f.open(QIODevice::WriteOnly | QIODevice::NewOnly) && f.write(bytes) == bytes.size() &&
        f.flush())
        return true;
    *error = QStringLiteral("Cannot write \"%1\": %2").arg(fileText(f.fileName()), f.errorString());
    if (f.isOpen())
        f.remove();
    return false;
}

void syncFolder(const QString& dir) {
    const int fd = ::open(QFile::encodeName(dir).constData(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::syncfs(fd);
        ::close(fd);
    }
}

} // namespace

QByteArray AddressExchange::exportLine(const Contact& c) {
    QByteArray line;
    for (const QByteArray& f : c.fields)
        line += exportValue(f) + ';';
    QByteArray notes = c.notes;
    notes.replace('\r', ' ').replace("\n", "");
    return line + exportValue(notes);
}

QByteArray AddressExchange::skinText(const QByteArray& key) const {
    return m_ctx.ini.ReadIniKey(kSection, key, m_ctx.folders.skinFile()) ? m_ctx.ini.IniValue
                                                                         : QByteArray();
}

FieldCaptions AddressExchange::captions() const {
    // A theme without the caption labels still names the fields in its
    // export header.
    FieldCaptions out;
    const QList<QByteArray> header = AddressCsv::values(skinText("exportstring"), ';');
    for (int k = 0; k < 17 && k < header.size(); ++k)
        out[k] = header[k];
    for (const NumberedLine& l : SkinLines(m_ctx.ini).read(kSection, m_ctx.folders.skinFile())) {
        const ControlLine line = parseControlLine(l.text);
        if (line.kindCode != ControlKind::Label || !line.name.toLower().startsWith("cap"))
            continue;
        const QByteArray which = line.name.mid(3).toLower();
        bool numeric = false;
        const int n = which.toInt(&numeric);
        const int k = which == "notes" ? 16 : numeric && n >= 1 && n <= 16 ? n - 1 : -1;
        if (k >= 0)
            out[k] = line.raw.split(',').mid(14).join(',').trimmed();
    }
    return out;
}

bool AddressExchange::exportTo(const QString& path) const {
    OrganiserState st;
    m_book.load(st);
    QList<QByteArray> lines{skinText("exportstring")};
    for (const ListEntry& e : st.lstSorted1.entries()) {
        if (e.text.isEmpty())
            continue;
        const std::optional<Contact> c = m_book.read(afterSep(e.text));
        if (!c)
            return false; // reported by the read
        lines.append(exportLine(*c));
    }
    QString error;
    if (TextFile::write(path, TextFile::joinLines(lines), &error))
        return true;
    m_ctx.reportFileError(error);
    return false;
}

std::optional<AddressCsv> AddressExchange::open(const QString& path) const {
    QFile f(path);
    QString problem;
    if (!f.open(QIODevice::ReadOnly))
        problem = QStringLiteral("Cannot read \"%1\": %2").arg(fileText(path), f.errorString());
    else if (f.size() > AddressCsv::kMaxFile)
        problem = QStringLiteral("\"%1\" is too large to be an address list.").arg(fileText(path));
    if (!problem.isEmpty()) {
        m_ctx.reportFileError(problem);
        return std::nullopt;
    }
    AddressCsv csv = AddressCsv::parse(f.readAll());
    if (csv.records.isEmpty()) {
        m_ctx.reportFileError(
            QStringLiteral("\"%1\" holds no addresses to import: the first line names the "
                           "columns and the addresses follow it, one per line.")
                .arg(fileText(path)));
        return std::nullopt;
    }
    return csv;
}

AddressExchange::Outcome AddressExchange::importRecords(const AddressCsv& csv,
                                                        const ColumnAssignment& assignment,
                                                        const Progress& progress) const {
    Outcome out;
    const QString dir = m_book.folder();
    int number = m_book.nextNumber();
    const int total = int(csv.records.size());
    for (int i = 0; i < total; ++i) {
        std::optional<Contact> c =
            contactFromValues(AddressCsv::values(csv.records[i], csv.separator), assignment);
        if (!c) {
            ++out.empty;
        } else if (number >= 0) {
            QString error;
            if (!writeContact(dir, number, AddressBook::serialise(*c), &error)) {
                m_ctx.reportFileError(error);
                out.failed = true;
                break;
            }
            ++number;
            ++out.written;
        }
        if (progress)
            progress(i + 1, total);
    }
    syncFolder(dir);
    return out;
}

} // namespace mirel
