#include "organiser/AgendaScreen.h"

#include "ui/SkinHost.h"
#include "ui/TextBridge.h"

namespace mirel {

void AgendaScreen::fill() {
    m_view = AgendaStore::View::Present;
    showList();
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
