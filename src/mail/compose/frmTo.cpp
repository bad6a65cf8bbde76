#include "mail/compose/frmTo.h"

#include "mail/compose/AddressPicker.h"
#include "platform/Cp1252.h"
#include "settings/CommaList.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/SoundPlayer.h"

#include <QKeyEvent>
#include <QListWidget>

namespace mirel {

frmTo::frmTo(const LayoutEngine& engine, QWidget* parent)
    : SkinDialog(engine, kSection, QStringLiteral("Address book"), parent) {
    setSkinFile(context().folders.skinFile());
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("lstAddressbook"));
    m_list->setAccessibleName(QStringLiteral("lstAddressbook"));
    m_list->setSelectionMode(QAbstractItemView::MultiSelection);
    layOut(QSize(440, 450));
    placeList();
    for (const PickerRow& row :
         AddressPicker::rows(context().folders.path(QStringLiteral("\\mirel\\addressbook")))) {
        auto* item = new QListWidgetItem(Cp1252::toUnicode(row.text), m_list);
        item->setForeground(m_list->palette().color(QPalette::Text));
    }
    connect(m_list, &QListWidget::itemDoubleClicked, this, [this] { runCommand("OK"); });
    m_list->show();
    m_list->setFocus();
    shapeAndHover();
}

frmTo::~frmTo() = default;

void frmTo::placeList() {
    IniHelpers& ini = context().ini;
    if (!ini.ReadIniKey(kSection, "list", skinFile()))
        return;
    const QList<QByteArray> f = ini.IniValue.split(',');
    auto num = [&](int i) { return f.value(i).trimmed().toInt(); };
    if (num(2) > 0 && num(3) > 0)
        m_list->setGeometry(num(0), num(1), num(2), num(3));
    QPalette pal = m_list->palette();
    if (f.size() >= 10) {
        const QColor back(num(4), num(5), num(6)), fore(num(7), num(8), num(9));
        pal.setColor(QPalette::Base, back);
        pal.setColor(QPalette::Text, fore);
        pal.setColor(QPalette::Highlight, fore);
        pal.setColor(QPalette::HighlightedText, back);
        m_list->setPalette(pal);
    }
    QFont font = m_list->font();
    if (!f.value(10).trimmed().isEmpty())
        font.setFamily(Cp1252::toUnicode(f.value(10).trimmed()));
    if (num(11) > 0 && num(11) < 100)
        font.setPointSize(num(11));
    m_list->setFont(font);
}

void frmTo::buttonClicked(int index) {
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    runCommand(b.command);
}

void frmTo::runCommand(const QByteArray& command) {
    const QByteArray upper = command.trimmed().toUpper();
    if (upper == "OK") {
        QList<QByteArray> picked;
        for (int i = 0; i < m_list->count(); ++i)
            if (m_list->item(i)->isSelected())
                picked.append(Cp1252::fromUnicode(m_list->item(i)->text()));
        m_result = AddressPicker::result(picked);
        finish();
    } else if (upper == "QUIT") {
        m_result.clear();
        finish();
    } else {
        startProgram(command);
    }
}

void frmTo::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        runCommand("QUIT");
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        runCommand("OK");
    else
        SkinHost::keyPressEvent(event);
}

} // namespace mirel
