#include "organiser/AgendaScreen.h"

#include "ui/SkinHost.h"
#include "ui/TextBridge.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QWheelEvent>

namespace mirel {
namespace {

// The date and time labels with the step command that moves each up; the
// one after it moves it down.
constexpr std::pair<const char*, int> kTimeFields[] = {
    {"DAY", AgendaEditor::DayUp},       {"MONTH", AgendaEditor::MonthUp},
    {"YEAR", AgendaEditor::YearUp},     {"SHOUR", AgendaEditor::StartHourUp},
    {"SMIN", AgendaEditor::StartMinUp}, {"EHOUR", AgendaEditor::EndHourUp},
    {"EMIN", AgendaEditor::EndMinUp}};

// Makes a time label behave like the field it looks like: the wheel and the
// arrow keys step it, digits type hours and minutes (two digits, or one that
// a second would take past the largest value), and it shows when it has the
// focus. Owned by its label, so a new layout starts clean.
class TimeField : public QObject {
public:
    TimeField(QLabel* label, int upStep, std::function<void(int)> step,
              std::function<void(int, int)> type)
        : QObject(label), m_label(label), m_up(upStep), m_step(std::move(step)),
          m_type(std::move(type)) {
        setObjectName(QStringLiteral("timeField"));
        label->setFocusPolicy(Qt::StrongFocus);
        label->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* e) override {
        switch (e->type()) {
        case QEvent::Wheel: {
            // Touchpads send small deltas: a step for every whole notch.
            m_wheel += static_cast<QWheelEvent*>(e)->angleDelta().y();
            for (; m_wheel >= 120; m_wheel -= 120)
                m_step(m_up);
            for (; m_wheel <= -120; m_wheel += 120)
                m_step(m_up + 1);
            return true;
        }
        case QEvent::KeyPress:
            return key(static_cast<QKeyEvent*>(e));
        case QEvent::FocusIn:
        case QEvent::FocusOut:
            m_typed.clear();
            m_label->setFrameStyle(e->type() == QEvent::FocusIn ? QFrame::Box | QFrame::Plain
                                                                : QFrame::NoFrame);
            return false;
        default:
            return false;
        }
    }

private:
    bool key(const QKeyEvent* k) {
        if (k->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
            return false;
        if (k->key() == Qt::Key_Up || k->key() == Qt::Key_Down) {
            m_step(k->key() == Qt::Key_Up ? m_up : m_up + 1);
            return true;
        }
        const bool typable = m_up >= AgendaEditor::StartHourUp;
        if (!typable || k->text().size() != 1 || !k->text()[0].isDigit())
            return false;
        const int largest =
            m_up == AgendaEditor::StartHourUp || m_up == AgendaEditor::EndHourUp ? 23 : 59;
        // A pause starts a new value, as in any time field.
        if (!m_lastDigit.isValid() || m_lastDigit.restart() > 1500)
            m_typed.clear();
        m_lastDigit.start();
        m_typed += k->text();
        if (m_typed.size() > 2 || m_typed.toInt() > largest)
            m_typed = k->text();
        m_type(m_up, m_typed.toInt());
        return true;
    }

    QLabel* m_label;
    int m_up;
    std::function<void(int)> m_step;
    std::function<void(int, int)> m_type;
    int m_wheel = 0;
    QString m_typed;
    QElapsedTimer m_lastDigit;
};

} // namespace

void AgendaScreen::fill() {
    m_view = AgendaStore::View::Present;
    SkinHost& h = m_sh.host;
    for (const auto& [name, up] : kTimeFields) {
        QLabel* label = h.label(h.state().tables.agendaLabels.value(name));
        if (label && !label->findChild<QObject*>(QStringLiteral("timeField")))
            new TimeField(
                label, up, [this](int code) { timeChanged(code, -1); },
                [this](int field, int value) { timeChanged(field, value); });
    }
    showList();
}

void AgendaScreen::timeChanged(int code, int typed) {
    // The date moves only where its step buttons are offered: dated items.
    if (code < AgendaEditor::StartHourUp && !m_ed.dateButtonsEnabled())
        return;
    readEditor();
    if (typed < 0)
        AgendaEditor::step(m_ed, code);
    else
        AgendaEditor::setTime(m_ed, code, typed);
    refreshLabels();
}

void AgendaScreen::showList() {
    m_store.showList(m_sh.agenda, m_view, m_sh.state.lstSorted1, m_sh.state.rows);
    fillList(m_sh.host.generalList(), m_sh.state.rows);
    m_editor.show(m_sh.agenda, -1, m_ed);
    m_sh.state.selection = -1;
    writeEditor();
    if (QTextEdit* text = m_sh.host.multiLine(1))
        text->setFocus();
}

void AgendaScreen::readEditor() {
    SkinHost& h = m_sh.host;
    m_ed.text = boxText(h.multiLine(1));
    if (h.modeButton(0))
        m_ed.dated = h.modeButton(0)->isChecked();
    for (int i = 0; i < 7; ++i)
        if (h.checkButton(i))
            m_ed.weekdays[size_t(i)] = h.checkButton(i)->isChecked();
}

void AgendaScreen::writeEditor() {
    SkinHost& h = m_sh.host;
    setBoxText(h.multiLine(1), m_ed.text);
    if (h.modeButton(0) && h.modeButton(1)) {
        h.modeButton(0)->setChecked(m_ed.dated);
        h.modeButton(1)->setChecked(!m_ed.dated);
    }
    for (int i = 0; i < 7; ++i)
        if (h.checkButton(i))
            h.checkButton(i)->setChecked(m_ed.weekdays[size_t(i)]);
    h.selectPriority(m_ed.priority);
    refreshLabels();
}

void AgendaScreen::refreshLabels() {
    SkinHost& h = m_sh.host;
    const auto l = m_ed.labels();
    const std::pair<const char*, const QByteArray*> shown[] = {
        {"SHOUR", &l.startHour}, {"SMIN", &l.startMin}, {"EHOUR", &l.endHour}, {"EMIN", &l.endMin},
        {"DAY", &l.day},         {"MONTH", &l.month},   {"YEAR", &l.year}};
    for (const auto& [name, text] : shown)
        setLabelText(h.label(h.state().tables.agendaLabels.value(name)), *text);
    // Mode refresh: weekday boxes for weekly items, date steps for dated ones.
    for (int i = 0; i < 7; ++i)
        if (h.checkButton(i))
            h.checkButton(i)->setEnabled(m_ed.weekdayBoxesEnabled());
    for (int index : h.state().tables.modeSlots)
        if (SkinButton* b = h.button(index))
            b->setEnabled(m_ed.dateButtonsEnabled());
}

bool AgendaScreen::command(const QByteArray& name, int arg) {
    qint16& sel = m_sh.state.selection;
    readEditor();
    if (name == "AGENDAPAST" || name == "AGENDAPRESENT") {
        m_view = name == "AGENDAPAST" ? AgendaStore::View::Past : AgendaStore::View::Present;
        showList();
        return true;
    }
    if (name == "AGENDAADD" || name == "AGENDACANCEL") {
        if (name == "AGENDAADD")
            sel = -1;
        m_editor.show(m_sh.agenda, sel, m_ed);
        writeEditor();
        if (QTextEdit* text = m_sh.host.multiLine(1))
            text->setFocus();
        return true;
    }
    if (name == "AGENDASAVE" || name == "AGENDADELETE") {
        const bool changed = name == "AGENDASAVE" ? m_editor.save(m_sh.agenda, sel, m_ed)
                                                  : m_editor.remove(m_sh.agenda, sel, m_ed);
        if (name == "AGENDASAVE")
            m_sh.saved = true; // the editor is emptied either way
        if (changed)
            showList();
        else
            writeEditor();
        return true;
    }
    if (name.startsWith("MODE") || name.startsWith("START") || name.startsWith("END")) {
        AgendaEditor::step(m_ed, arg);
        refreshLabels();
        return true;
    }
    return false;
}

void AgendaScreen::listClicked() {
    bool hasText = false;
    const int p = currentItemData(m_sh.host.generalList(), &hasText);
    showItem(hasText ? p : -1);
}

void AgendaScreen::showItem(int p) {
    m_sh.state.selection = qint16(p);
    m_editor.show(m_sh.agenda, p, m_ed);
    writeEditor();
}

void AgendaScreen::modeClicked() {
    readEditor();
    refreshLabels();
}

} // namespace mirel
