#include "organiser/CalendarBook.h"

#include "platform/IniFile.h"
#include "settings/TripletCodec.h"

#include <QFileInfo>

namespace mirel {

int CalendarBook::monthLength(int month) {
    static constexpr int kDays[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month >= 1 && month <= 12 ? kDays[month - 1] : 0;
}

QByteArray CalendarBook::dayKey(int month, int day) {
    return QByteArray::number(month).rightJustified(2, '0') +
           QByteArray::number(day).rightJustified(2, '0');
}

QString CalendarBook::monthPicture(int month) const {
    const QString base = QStringLiteral("calmon") + QString::number(month).rightJustified(2, u'0');
    for (const QString& folder : {QStringLiteral("Mirel\\"), QString()})
        for (const char* ext : {".bmp", ".jpg"}) {
            const QString p = m_ctx.folders.themeFile(folder + base + QLatin1String(ext));
            if (QFileInfo::exists(p))
                return p;
        }
    return m_ctx.folders.themeFile(QStringLiteral("Mirel\\") + base + QStringLiteral(".bmp"));
}

QByteArray CalendarBook::note(const QByteArray& mmdd) const {
    return m_ctx.ini.ReadIniKey("CALENDAR", mmdd, path()) ? decodeTriplets(m_ctx.ini.IniValue)
                                                          : QByteArray();
}

MonthView CalendarBook::showMonth(int month) const {
    MonthView v;
    v.month = month;
    v.days = monthLength(month);
    v.picture = monthPicture(month);
    QByteArray bytes;
    IniFile::load(path(), bytes);
    const IniDocument doc(bytes);
    for (int d = 1; d <= v.days; ++d)
        v.notes[d - 1] = decodeTriplets(doc.value("CALENDAR", dayKey(month, d)).value_or(""));
    return v;
}

void CalendarBook::loadList(SortedList& rows, QByteArray* listSound) const {
    rows.clear();
    QByteArray bytes;
    IniFile::load(path(), bytes);
    const IniDocument doc(bytes);
    QByteArray skin;
    IniFile::load(m_ctx.folders.skinFile(), skin);
    const IniDocument skinDoc(skin);
    for (int m = 1; m <= 12; ++m) {
        const QByteArray name =
            skinDoc.value("CALENDAR", "mon" + QByteArray::number(m).rightJustified(2, '0'))
                .value_or("");
        for (int d = 1; d <= monthLength(m); ++d) {
            const QByteArray key = dayKey(m, d);
            const QByteArray v = doc.value("CALENDAR", key).value_or("");
            if (!v.isEmpty())
                rows.add(key.right(2) + ' ' + name + "  " + decodeTriplets(v), ("3" + key).toInt());
        }
    }
    if (listSound)
        *listSound = skinDoc.value("CALENDAR", "load").value_or("");
}

bool CalendarBook::dayLeft(int month, int day, const QByteArray& remembered,
                           const QByteArray& text) const {
    if (text == remembered || day < 1 || day > monthLength(month))
        return false;
    return m_ctx.ini.WriteIniKey("CALENDAR", dayKey(month, day), encodeTriplets(text), path());
}

} // namespace mirel
