#include "ui/TextBridge.h"

#include "organiser/SortedList.h"
#include "platform/Cp1252.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTextEdit>

namespace mirel {

QByteArray lineText(const QLineEdit* box) {
    return box ? Cp1252::fromUnicode(box->text()) : QByteArray();
}

void setLineText(QLineEdit* box, const QByteArray& text) {
    if (box)
        box->setText(Cp1252::toUnicode(text));
}

QByteArray boxText(const QTextEdit* box) {
    if (!box)
        return {};
    QByteArray bytes = Cp1252::fromUnicode(box->toPlainText());
    return bytes.replace("\n", "\r\n");
}

void setBoxText(QTextEdit* box, const QByteArray& text) {
    if (!box)
        return;
    QString s = Cp1252::toUnicode(text);
    box->setPlainText(s.replace(QLatin1String("\r\n"), QLatin1String("\n")));
}

QByteArray labelText(const QLabel* label) {
    return label ? Cp1252::fromUnicode(label->text()) : QByteArray();
}

void setLabelText(QLabel* label, const QByteArray& text) {
    if (label)
        label->setText(Cp1252::toUnicode(text));
}

void fillList(QListWidget* list, const SortedList& rows) {
    if (!list)
        return;
    list->clear();
    for (const ListEntry& e : rows.entries()) {
        auto* item = new QListWidgetItem(Cp1252::toUnicode(e.text), list);
        item->setData(Qt::UserRole, e.itemData);
    }
}

int currentItemData(const QListWidget* list, bool* hasText) {
    const QListWidgetItem* item = list ? list->currentItem() : nullptr;
    if (hasText)
        *hasText = item && !item->text().isEmpty();
    return item ? item->data(Qt::UserRole).toInt() : -1;
}

} // namespace mirel
