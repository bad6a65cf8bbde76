#pragma once
// The agenda screen: the list in its present or past view above the editor
// (text box, time labels, mode and weekday buttons, priority buttons).
#include "organiser/AgendaEditor.h"
#include "organiser/OrganiserShared.h"

namespace mirel {

/// AGENDAPAST/PRESENT, the editor commands, list and mode clicks.
class AgendaScreen {
public:
    AgendaScreen(OrganiserShared& shared, AgendaStore& store)
        : m_sh(shared), m_store(store), m_editor(shared.ctx, store) {}

    void fill();
    bool command(const QByteArray& name, int arg);
    void listClicked();
    void modeClicked();
    void priorityChosen(int priority) { m_ed.priority = priority; }
    /// Shows item p (from the overview) and selects it.
    void showItem(int p);
    /// The item as the editor's controls hold it now (for printing).
    const AgendaEditorState& editorNow() {
        readEditor();
        return m_ed;
    }

private:
    void showList();
    void readEditor();
    void writeEditor();
    void refreshLabels();
    /// A step command (typed < 0) or a typed hour or minute.
    void timeChanged(int code, int typed);

    OrganiserShared& m_sh;
    AgendaStore& m_store;
    AgendaEditor m_editor;
    AgendaEditorState m_ed;
    AgendaStore::View m_view = AgendaStore::View::Present;
};

} // namespace mirel
