#include "organiser/CalendarScreen.h"

#include "ui/SkinHost.h"
#include "ui/TextBridge.h"

#include <QEvent>
#include <QPixmap>

namespace mirel {

void CalendarScreen::fill(int month) {
    for (int d = 1; d <= 31; ++d)
        if (QLineEdit* box = m_sh.host.textBox(d))
            box->installEventFilter(this);
    showMonth(month);
    loadList();
}

void CalendarScreen::showMonth(int month) {
    if (month < 1 || month > 12)
        return;
    m_month = month;
    const MonthView v = m_book.showMonth(month);
    if (auto* pic = qobject_cast<QLabel*>(m_sh.host.placed(PlacedPart::MonthPicture))) {
        pic->setPixmap(QPixmap(v.picture));
        pic->setScaledContents(true);
        pic->setVisible(true);
    }
    for (int d = 1; d <= 31; ++d) {
        QLineEdit* box = m_sh.host.textBox(d);
        if (!box)
            continue;
        const bool shown = d <= v.days;
        setLineText(box, shown ? v.notes[size_t(d - 1)] : QByteArray());
        box->setVisible(shown);
        box->setFocusPolicy(shown ? Qt::StrongFocus : Qt::NoFocus);
        if (!shown)
            box->setToolTip({});
    }
}

void CalendarScreen::loadList() {
    m_book.loadList(m_sh.state.rows, &m_sh.state.listSound);
    fillList(m_sh.host.generalList(), m_sh.state.rows);
    m_sh.state.selection = -1;
}

bool CalendarScreen::command(const QByteArray& name, int arg) {
    if (!name.startsWith("MONTH") || name == "MONTHPRINT" || name == "MONTHALL")
        return false;
    showMonth(arg);
    return true;
}

void CalendarScreen::listClicked() {
    bool hasText = false;
    const int code = currentItemData(m_sh.host.generalList(), &hasText);
    if (hasText && code >= 30101)
        showMonth(code / 100 % 100);
}

void CalendarScreen::showDay(int month, int day) {
    showMonth(month);
    if (QLineEdit* box = m_sh.host.textBox(day)) {
        box->setFocus();
        box->setCursorPosition(int(box->text().size()));
    }
}

int CalendarScreen::dayOf(QObject* box) const {
    for (int d = 1; d <= 31; ++d)
        if (m_sh.host.textBox(d) == box)
            return d;
    return 0;
}

bool CalendarScreen::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::FocusIn && event->type() != QEvent::FocusOut)
        return false;
    const int day = dayOf(watched);
    if (day == 0 || m_sh.host.state().currentScreen != "Calendar")
        return false;
    const QByteArray text = lineText(static_cast<QLineEdit*>(watched));
    if (event->type() == QEvent::FocusIn) {
        m_remembered = text;
    } else if (m_book.dayLeft(m_month, day, m_remembered, text)) {
        m_remembered = text;
        loadList();
        m_refreshOverview();
    }
    return false;
}

} // namespace mirel
