#include "organiser/DataFolders.h"
#include "platform/PrivateFiles.h"

#include "organiser/SortedList.h"
#include "organiser/TextFile.h"
#include "platform/IniFile.h"
#include "settings/CommaList.h"
#include "settings/TripletCodec.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace mirel {
namespace {

constexpr int kContactFields = 17;

// The count in "ID" comes from an old file and may be garbage: items past
// the highest numbered key present are all absent anyway.
int itemCount(const IniDocument& doc, const QByteArray& section) {
    const auto id = doc.value(section, "ID");
    if (!id)
        return -1;
    long highest = 0;
    for (const QByteArray& k : doc.keyNames(section))
        highest = std::max(highest, leadingNumber(k));
    return int(std::clamp<long>(leadingNumber(*id), 0, highest));
}

IniDocument loadDoc(const QString& path) {
    QByteArray bytes;
    IniFile::load(path, bytes);
    return IniDocument(bytes);
}

QByteArray twoDigitsAtLeast(qsizetype k) {
    return QByteArray::number(k).rightJustified(2, '0');
}

} // namespace

QString DataFolders::oldStore() const {
    return m_ctx.folders.path(QStringLiteral("\\mirel-data.ini"));
}

void DataFolders::bootstrap() {
    for (const char* dir :
         {"\\Mirel", "\\Mirel\\Addressbook", "\\Mirel\\Logbook", "\\Mirel\\Notes", "\\Mirel\\Todo"})
        makePrivateFolder(m_ctx.folders.path(QString::fromLatin1(dir)));

    const QString dirs = m_ctx.directoriesIni();
    for (const QByteArray& key : {QByteArray("Logbook"), QByteArray("Notes"), QByteArray("Todo")})
        if (!m_ctx.ini.ReadIniKey("MIREL", key, dirs))
            IniFile::write(dirs, "MIREL", key, m_ctx.defaultItemFolder(key).toUtf8());

    if (!QFileInfo::exists(oldStore()))
        return;
    convertContacts();
    convertAgenda();
    convertCalendar();
    convertItems("LOG", m_ctx.defaultItemFolder("Logbook"), ".log");
    convertItems("NOTES", m_ctx.defaultItemFolder("Notes"), ".not");
    convertItems("TODO", m_ctx.defaultItemFolder("Todo"), ".tod");
}

void DataFolders::convertContacts() {
    const IniDocument old = loadDoc(oldStore());
    const int n = itemCount(old, "BOOK");
    if (n < 0)
        return;
    const QString folder = m_ctx.folders.path(QStringLiteral("\\Mirel\\Addressbook"));
    for (int i = 0; i < n; ++i) {
        const auto item = old.value("BOOK", QByteArray::number(i + 1));
        if (!item || item->isEmpty())
            continue;
        QList<QByteArray> f = decodeTriplets(*item).split(kFieldSep);
        f.resize(std::max<qsizetype>(f.size(), kContactFields));
        QList<QByteArray> lines{f[2], f[0], f[1]};
        for (int k = 3; k < 16; ++k)
            lines.append(f[k]);
        lines.append(encodeTriplets(f[16]));
        TextFile::write(folder + QLatin1Char('/') + QString::number(i) + QStringLiteral(".dat"),
                        TextFile::joinLines(lines));
    }
    m_ctx.ini.DeleteIniEntry(oldStore(), "BOOK", {}, true, true);
}

void DataFolders::convertAgenda() {
    const IniDocument old = loadDoc(oldStore());
    const int n = itemCount(old, "AGENDA");
    if (n < 0)
        return;
    IniFile::modify(m_ctx.folders.path(QStringLiteral("\\mirel\\agenda.ini")),
                    [&](IniDocument& agenda, bool) {
                        agenda.setValue("AGENDA", "ID", *old.value("AGENDA", "ID"));
                        for (int i = 1; i <= n; ++i) {
                            const QByteArray key = QByteArray::number(i);
                            agenda.setValue("AGENDA", key, old.value("AGENDA", key).value_or(""));
                        }
                        return IniResult{};
                    });
    m_ctx.ini.DeleteIniEntry(oldStore(), "AGENDA", {}, true, true);
}

void DataFolders::convertCalendar() {
    static constexpr int kDays[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const IniDocument old = loadDoc(oldStore());
    QList<std::pair<QByteArray, QByteArray>> notes;
    for (int m = 1; m <= 12; ++m)
        for (int d = 1; d <= kDays[m - 1]; ++d) {
            const QByteArray key = twoDigitsAtLeast(m) + twoDigitsAtLeast(d);
            const auto v = old.value("CALENDAR", key);
            if (v && !v->isEmpty())
                notes.append({key, *v});
        }
    if (!notes.isEmpty())
        IniFile::modify(m_ctx.folders.path(QStringLiteral("\\Mirel\\Calendar.ini")),
                        [&](IniDocument& cal, bool) {
                            for (const auto& [key, value] : notes)
                                cal.setValue("CALENDAR", key, value);
                            return IniResult{};
                        });
    m_ctx.ini.DeleteIniEntry(oldStore(), "CALENDAR", {}, true, true);
}

QList<QByteArray> DataFolders::decodedItems(const QByteArray& section) {
    const IniDocument old = loadDoc(oldStore());
    const int n = itemCount(old, section);
    QList<QByteArray> items;
    for (int i = 1; i <= n; ++i)
        if (const auto v = old.value(section, QByteArray::number(i)))
            items.append(decodeTriplets(*v));
    return items;
}

void DataFolders::convertItems(const QByteArray& section, const QString& folder,
                               const char* extension) {
    if (!loadDoc(oldStore()).hasSection(section))
        return;
    SortedList sorted; // lstSorted1
    QList<ListEntry> entries;
    for (const QByteArray& item : decodedItems(section))
        entries.append({item, 0});
    sorted.addAll(entries);
    for (qsizetype k = 0; k < sorted.size(); ++k) {
        const QByteArray entry = sorted.text(k);
        if (entry.isEmpty())
            continue;
        QByteArray name, content;
        if (section == "LOG") {
            name = entry.left(14);
            content = entry.mid(15) + "\r\n";
        } else {
            name = "200201010101" + twoDigitsAtLeast(k);
            content = beforeSep(entry) + "\r\n" + afterSep(entry) + "\r\n";
        }
        TextFile::write(folder + QLatin1Char('/') + QString::fromLatin1(name + extension), content);
    }
    m_ctx.ini.DeleteIniEntry(oldStore(), section, {}, true, true);
}

} // namespace mirel
