#include "organiser/ItemScreen.h"

#include "ui/SkinHost.h"
#include "ui/TextBridge.h"

namespace mirel {

ItemScreen::ItemScreen(OrganiserShared& shared, Kind kind)
    : m_sh(shared), m_kind(kind), m_notes(shared.ctx), m_log(shared.ctx), m_todo(shared.ctx) {}

EditBoxes ItemScreen::readBoxes() const {
    SkinHost& h = m_sh.host;
    EditBoxes b;
    b.title = lineText(h.textBox(1)); // notes: title; logbook: search text
    b.body = boxText(h.multiLine(1));
    if (m_kind == Kind::Logbook)
        b.stamp = labelText(h.label(1));
    // A command that changes nothing (a delete answered No, a failed save)
    // leaves the done button as it was.
    if (m_kind == Kind::Todo)
        if (const SkinButton* done = h.button(h.state().tables.doneButton))
            b.doneButtonVisible = !done->isHidden();
    return b;
}

void ItemScreen::writeBoxes(const EditBoxes& b) {
    SkinHost& h = m_sh.host;
    if (m_kind == Kind::Notes)
        setLineText(h.textBox(1), b.title);
    if (m_kind == Kind::Logbook)
        setLabelText(h.label(1), b.stamp);
    setBoxText(h.multiLine(1), b.body);
    if (m_kind == Kind::Todo)
        if (SkinButton* done = h.button(h.state().tables.doneButton))
            done->setVisible(b.doneButtonVisible);
    if (b.focusFirstBox) {
        if (m_kind == Kind::Notes && h.textBox(1))
            h.textBox(1)->setFocus();
        else if (h.multiLine(1))
            h.multiLine(1)->setFocus();
    }
}

void ItemScreen::showRows() {
    fillList(m_sh.host.generalList(), m_sh.state.rows);
}

void ItemScreen::fill() {
    EditBoxes b;
    switch (m_kind) {
    case Kind::Notes:
        m_notes.load(m_sh.state);
        break;
    case Kind::Logbook:
        m_log.load(m_sh.state, {});
        break;
    case Kind::Todo:
        m_todo.load(m_sh.state);
        break;
    }
    showRows();
    if (m_kind == Kind::Todo)
        writeBoxes(b); // the done button starts hidden
    // Told before anything is typed, not only when a save fails.
    static const char* const kKeys[] = {"Notes", "Logbook", "Todo"};
    m_sh.ctx.itemFolderPresent(kKeys[int(m_kind)]);
}

bool ItemScreen::command(const QByteArray& name) {
    OrganiserState& st = m_sh.state;
    EditBoxes b = readBoxes();
    bool listChanged = false;
    if (m_kind == Kind::Notes) {
        if (name == "NOTEADD")
            m_notes.add(st, b);
        else if (name == "NOTECANCEL")
            m_notes.cancel(st, b);
        else if (name == "NOTESAVE")
            listChanged = m_notes.save(st, b);
        else if (name == "NOTEDELETE")
            listChanged = m_notes.remove(st, b);
        else
            return false;
    } else if (m_kind == Kind::Logbook) {
        if (name == "LOGADD")
            m_log.add(st, b);
        else if (name == "LOGCANCEL")
            m_log.cancel(st, b);
        else if (name == "LOGSAVE")
            listChanged = m_log.save(st, b);
        else if (name == "LOGDELETE")
            listChanged = m_log.remove(st, b);
        else if (name == "LOGSEARCH" || name == "LOGSHOWALL") {
            name == "LOGSEARCH" ? m_log.search(st, b) : m_log.showAll(st, b);
            listChanged = true;
        } else
            return false;
    } else {
        if (name == "TODOADD")
            m_todo.add(st, b);
        else if (name == "TODOCANCEL")
            m_todo.cancel(st, b);
        else if (name == "TODOSAVE")
            listChanged = m_todo.save(st, b);
        else if (name == "TODODONE")
            listChanged = m_todo.markDone(st, b);
        else if (name == "TODODELETE")
            listChanged = m_todo.remove(st, b);
        else
            return false;
    }
    if (name.endsWith("SAVE"))
        m_sh.saved = listChanged;
    if (listChanged)
        showRows();
    writeBoxes(b);
    return true;
}

void ItemScreen::listClicked() {
    const QListWidget* list = m_sh.host.generalList();
    const int row = list ? list->currentRow() : -1;
    EditBoxes b = readBoxes();
    switch (m_kind) {
    case Kind::Notes:
        m_notes.click(m_sh.state, row, b);
        break;
    case Kind::Logbook:
        m_log.click(m_sh.state, row, b);
        break;
    case Kind::Todo:
        m_todo.click(m_sh.state, row, b);
        break;
    }
    writeBoxes(b);
}

} // namespace mirel
