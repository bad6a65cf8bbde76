#include "mail/compose/frmMenu.h"

#include "platform/Cp1252.h"
#include "settings/CommaList.h"
#include "settings/IniHelpers.h"

#include <QActionGroup>

namespace mirel {

const QStringList& frmMenu::formats() {
    static const QStringList names = {QStringLiteral("Normal"),    QStringLiteral("Formatted"),
                                      QStringLiteral("Heading 1"), QStringLiteral("Heading 2"),
                                      QStringLiteral("Heading 3"), QStringLiteral("Heading 4"),
                                      QStringLiteral("Heading 5"), QStringLiteral("Heading 6")};
    return names;
}

frmMenu::frmMenu(IniHelpers& ini, const QString& skinFile, QWidget* parent) : QMenu(parent) {
    setObjectName(QStringLiteral("frmMenu"));
    setAccessibleName(QStringLiteral("frmMenu"));
    auto colour = [&](const char* key, const char* fallback) {
        const QByteArray value = ini.ReadIniKey(kSection, key, skinFile) && !ini.IniValue.isEmpty()
                                     ? ini.IniValue
                                     : QByteArray(fallback);
        const Rgb c = parseRgb(value);
        return QStringLiteral("rgb(%1,%2,%3)").arg(c.r).arg(c.g).arg(c.b);
    };
    const QString back = colour("BackColor", "21,25,35");
    const QString fore = colour("ForeColor", "216,221,232");
    const QString high = colour("HighColor", "0,200,220");
    QString family = QStringLiteral("DejaVu Sans");
    int size = 10;
    if (ini.ReadIniKey(kSection, "Font", skinFile) && !ini.IniValue.isEmpty()) {
        const QList<QByteArray> f = ini.IniValue.split(',');
        family = Cp1252::toUnicode(f.value(0).trimmed());
        size = qBound(6, f.value(1).trimmed().toInt(), 40);
    }
    setStyleSheet(QStringLiteral("QMenu{background:%1;color:%2;border:2px solid %3;"
                                 "font-family:'%4';font-size:%5pt;padding:4px}"
                                 "QMenu::item{padding:4px 28px 4px 24px}"
                                 "QMenu::item:selected{background:%3;color:%1}"
                                 "QMenu::item:disabled{color:gray}")
                      .arg(back, fore, high, family)
                      .arg(size));
    auto* group = new QActionGroup(this);
    group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    for (const QString& name : formats()) {
        QAction* a = addAction(name);
        a->setCheckable(true);
        group->addAction(a);
        connect(a, &QAction::triggered, this, [this, name] { Q_EMIT formatChosen(name); });
    }
}

void frmMenu::showState(const QString& current, bool enabled) {
    for (QAction* a : actions()) {
        a->setEnabled(enabled);
        a->setChecked(enabled && a->text() == current);
    }
}

} // namespace mirel
