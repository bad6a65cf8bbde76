#include "ui/WidgetMessageSink.h"

#include "ui/WindowLook.h"

#include <QMessageBox>

namespace mirel {

void WidgetMessageSink::showMessage(const QString& text, const QString& title, Icon icon) {
    QMessageBox box(m_parent);
    WindowLook::apply(&box);
    box.setWindowTitle(title);
    // Messages quote file, folder and server texts, which may look like markup.
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    switch (icon) {
    case Icon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case Icon::Warning:
        box.setIcon(QMessageBox::Warning);
        break;
    case Icon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case Icon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case Icon::None:
        break;
    }
    box.exec();
}

bool WidgetMessageSink::askYesNo(const QString& text, const QString& title) {
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No,
                    m_parent);
    WindowLook::apply(&box);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

MessageSink::Answer WidgetMessageSink::askYesNoCancel(const QString& text, const QString& title) {
    QMessageBox box(QMessageBox::Question, title, text,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, m_parent);
    WindowLook::apply(&box);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::Cancel);
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    default:
        return Answer::Cancel;
    }
}

} // namespace mirel
