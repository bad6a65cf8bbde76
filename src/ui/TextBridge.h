#pragma once
// Moving the core's Windows-1252 bytes in and out of widgets. Multi-line
// boxes hold CR LF line breaks in the core, as the files do; the widgets
// hold plain "\n".
#include <QByteArray>

class QLabel;
class QLineEdit;
class QListWidget;
class QTextEdit;

namespace mirel {

class SortedList;

QByteArray lineText(const QLineEdit* box);
void setLineText(QLineEdit* box, const QByteArray& text);
QByteArray boxText(const QTextEdit* box);
void setBoxText(QTextEdit* box, const QByteArray& text);
QByteArray labelText(const QLabel* label);
void setLabelText(QLabel* label, const QByteArray& text);
/// Fills a list with rows; each item keeps its row's item data (Qt::UserRole).
void fillList(QListWidget* list, const SortedList& rows);
/// The item data of a list's current row, and whether that row has text.
int currentItemData(const QListWidget* list, bool* hasText = nullptr);

} // namespace mirel
