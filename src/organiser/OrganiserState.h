#pragma once
// The state the organiser screens share on the main window: the hidden
// working list, the rows of the visible list, the selected-item value and
// the list-click sound of the current screen.
#include "organiser/SortedList.h"

namespace mirel {

/// Working list, visible rows and selection of the shown organiser screen.
struct OrganiserState {
    SortedList lstSorted1;
    SortedList rows{false}; // lstBox element 2, in display order
    /// Position of the selected item; -1 none, -2 a new logbook entry begun.
    qint16 selection = -1;
    QByteArray listSound;
};

/// What the edit boxes of an organiser screen hold. Each screen uses the
/// boxes its skin places: notes title/body, logbook stamp/text/search,
/// to-do text, address fields 1..16 and notes.
struct EditBoxes {
    QByteArray title;               // txtBox 1 (notes), search text (logbook)
    QByteArray body;                // txtMBox 1
    QByteArray stamp;               // lblBox 1 (logbook)
    bool doneButtonVisible = false; // to-do
    bool focusFirstBox = false;     // set by the add commands
};

} // namespace mirel
