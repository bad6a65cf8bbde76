#pragma once
// The notes, logbook and to-do screens: a list, edit boxes and the item
// commands. The widgets only carry values to and from the core logic.
#include "organiser/Logbook.h"
#include "organiser/NotesBook.h"
#include "organiser/OrganiserShared.h"
#include "organiser/TodoList.h"

namespace mirel {

/// One of the three item screens, chosen by its section name.
class ItemScreen {
public:
    enum class Kind { Notes, Logbook, Todo };
    ItemScreen(OrganiserShared& shared, Kind kind);

    /// After the screen's section was laid out.
    void fill();
    /// NOTEADD, LOGSEARCH, TODODONE, ...; false when not one of this screen's.
    bool command(const QByteArray& name);
    void listClicked();

private:
    EditBoxes readBoxes() const;
    void writeBoxes(const EditBoxes& boxes);
    void showRows();

    OrganiserShared& m_sh;
    Kind m_kind;
    NotesBook m_notes;
    Logbook m_log;
    TodoList m_todo;
};

} // namespace mirel
