#include "organiser/AddressScreen.h"

#include "ui/SkinHost.h"
#include "ui/TextBridge.h"

namespace mirel {

void AddressScreen::readBoxes() {
    for (int n = 0; n < 16; ++n)
        m_current.fields[n] = lineText(m_sh.host.textBox(n + 1));
    m_current.notes = boxText(m_sh.host.multiLine(1));
}

void AddressScreen::writeBoxes() {
    for (int n = 0; n < 16; ++n)
        setLineText(m_sh.host.textBox(n + 1), m_current.fields[n]);
    setBoxText(m_sh.host.multiLine(1), m_current.notes);
}

void AddressScreen::fill() {
    m_book.load(m_sh.state);
    fillList(m_sh.host.generalList(), m_sh.state.rows);
    m_current = Contact{};
}

bool AddressScreen::command(const QByteArray& name) {
    OrganiserState& st = m_sh.state;
    if (name == "ADDRESSADD") {
        m_book.add(st, m_current);
        writeBoxes();
        if (QLineEdit* first = m_sh.host.textBox(1))
            first->setFocus();
    } else if (name == "ADDRESSCANCEL") {
        m_book.cancel(st, m_current);
        writeBoxes();
    } else if (name == "ADDRESSSAVE") {
        readBoxes();
        m_sh.saved = m_book.save(st, m_current);
        if (m_sh.saved)
            fillList(m_sh.host.generalList(), st.rows);
    } else if (name == "ADDRESSDELETE") {
        if (m_book.remove(st, m_current)) {
            fillList(m_sh.host.generalList(), st.rows);
            writeBoxes();
        }
    } else if (name == "ADDRESSEXPORT") {
        m_transfer.exportBook();
    } else if (name == "ADDRESSIMPORT") {
        if (m_transfer.importFile()) {
            fill();
            writeBoxes();
        }
    } else {
        return false;
    }
    return true;
}

void AddressScreen::listClicked() {
    const QListWidget* list = m_sh.host.generalList();
    m_book.click(m_sh.state, list ? list->currentRow() : -1, m_current);
    writeBoxes();
}

} // namespace mirel
