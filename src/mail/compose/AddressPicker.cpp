#include "mail/compose/AddressPicker.h"

#include "organiser/TextFile.h"
#include "platform/Cp1252.h"

#include <algorithm>

namespace mirel {

QList<PickerRow> AddressPicker::rows(const QString& folder) {
    struct Entry {
        QString sortKey;
        PickerRow row;
    };
    QList<Entry> entries;
    const QStringList files = TextFile::listFolder(folder);
    for (int i = 0; i < files.size(); ++i) {
        const auto lines = TextFile::readLines(folder + QLatin1Char('/') + files.at(i));
        if (!lines)
            continue;
        const QByteArray name = lines->value(0);
        const QByteArray address = lines->value(14);
        if (name.isEmpty() || address.isEmpty())
            continue;
        const QString key = Cp1252::toUnicode(name + '\x01' + address + '\x01') + files.at(i);
        entries.append({key, {'"' + name + "\" <" + address + '>', i}});
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return a.sortKey.compare(b.sortKey, Qt::CaseInsensitive) < 0;
    });
    QList<PickerRow> out;
    for (const Entry& e : entries)
        out.append(e.row);
    return out;
}

QByteArray AddressPicker::result(const QList<QByteArray>& selected) {
    return selected.join(", ");
}

QByteArray AddressPicker::appendTo(QByteArrayView box, QByteArrayView picked) {
    if (picked.isEmpty())
        return box.toByteArray();
    return box.isEmpty() ? picked.toByteArray() : box.toByteArray() + ", " + picked.toByteArray();
}

} // namespace mirel
