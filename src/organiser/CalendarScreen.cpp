#include "organiser/CalendarScreen.h"

#include "ui/SkinHost.h"
#include "ui/TextBridge.h"

#include <QEvent>
#include <QPixmap>

namespace mirel {

void CalendarScreen::fill(int month) {
    m_shown = {}; // the boxes are new
    for (int d = 1; d <= 31; ++d)
        if (QLineEdit* box = m_sh.host.textBox(d))
            box->installEventFilter(this);
    showMonth(month);
    loadList();
}

void CalendarScreen::showMonth(int month) {
    if (month < 1 || month > 12)
        return;
    commitTyping();
    m_month = month;
    const MonthView v = m_book.showMonth(month);
    if (auto* pic = qobject_cast<QLabel*>(m_sh.host.placed(PlacedPart::MonthPicture))) {
        pic->setPixmap(QPixmap(v.picture));
        pic->setScaledContents(true);
        pic->setVisible(true);
    }
    QLineEdit* previous = nullptr;
    for (int d = 1; d <= 31; ++d) {
        QLineEdit* box = m_sh.host.textBox(d);
        if (!box)
            continue;
        const bool shown = d <= v.days;
        // Tab walks the days in calendar order, whatever order the skin placed them in.
        if (shown && previous)
            QWidget::setTabOrder(previous, box);
        if (shown)
            previous = box;
        setLineText(box, shown ? v.notes[size_t(d - 1)] : QByteArray());
        box->setVisible(shown);
        box->setFocusPolicy(shown ? Qt::StrongFocus : Qt::NoFocus);
        if (!shown)
            box->setToolTip({});
    }
    m_shown = v.notes;
}

void CalendarScreen::commitTyping() {
    // Any box whose text is not what the month showed was typed in; that
    // is the box being left, whichever way it is left.
    if (m_sh.host.state().currentScreen != "Calendar")
        return;
    bool written = false;
    for (int d = 1; d <= 31; ++d)
        if (QLineEdit* box = m_sh.host.textBox(d); box && box->isVisibleTo(&m_sh.host)) {
            const QByteArray text = lineText(box);
            if (m_book.dayLeft(m_month, d, m_shown[size_t(d - 1)], text)) {
                m_shown[size_t(d - 1)] = text;
                written = true;
            }
        }
    if (written) {
        loadList();
        m_refreshOverview();
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
    if (event->type() == QEvent::FocusOut && dayOf(watched) > 0)
        commitTyping();
    return false;
}

} // namespace mirel
