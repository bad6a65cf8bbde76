#pragma once
// What the notes and to-do lists share: a row's position is the item's
// position in the hidden list, "add" empties the boxes, and every save or
// delete ends by reloading the list, emptying the boxes and refreshing the
// overview. Each list says how it loads and shows its items.
#include "organiser/OrganiserContext.h"
#include "organiser/OrganiserState.h"

namespace mirel {

/// Base of NotesBook and TodoList.
class ItemBook {
public:
    virtual ~ItemBook() = default;

    virtual void load(OrganiserState& st) const = 0;
    virtual void show(const OrganiserState& st, int i, EditBoxes& boxes) const = 0;
    void add(OrganiserState& st, EditBoxes& boxes) const;
    void cancel(const OrganiserState& st, EditBoxes& boxes) const { show(st, st.selection, boxes); }
    /// Row click: shows the row's item, or empties the boxes for an empty row.
    void click(OrganiserState& st, int row, EditBoxes& boxes) const;

protected:
    explicit ItemBook(const OrganiserContext& ctx) : m_ctx(ctx) {}
    /// After a save or delete.
    void reset(OrganiserState& st, EditBoxes& boxes) const;
    const OrganiserContext& m_ctx;
};

/// A name of fourteen digits + extension for a new item, the present time
/// or, when an item of that name exists already, the next free second
/// after it, so two items saved within one second do not overwrite each
/// other.
QByteArray freeStampName(const QString& folder, const QDateTime& when, const char* extension);

/// Body text as the edit box shows it: each line of the file after the
/// first `skip` lines, followed by CR LF.
QByteArray bodyFromLines(const QList<QByteArray>& lines, int skip);

} // namespace mirel
