#pragma once
// Notes: one file per note in the notes folder, named by the fourteen-digit
// local time of its first save + ".not"; line 1 the title, then the body.
// The hidden list holds "title<1>file name" sorted without regard to case,
// and the visible list shows the titles in the same order, so a row's
// position is the note's position in the hidden list.
#include "organiser/OrganiserContext.h"
#include "organiser/OrganiserState.h"

namespace mirel {

/// The notes screen's operations, on values.
class NotesBook {
public:
    explicit NotesBook(const OrganiserContext& ctx) : m_ctx(ctx) {}

    void load(OrganiserState& st) const;
    void show(const OrganiserState& st, int i, EditBoxes& boxes) const;
    void add(OrganiserState& st, EditBoxes& boxes) const;
    void cancel(const OrganiserState& st, EditBoxes& boxes) const { show(st, st.selection, boxes); }
    /// Row click: shows the row's note, or clears the boxes for an empty row.
    void click(OrganiserState& st, int row, EditBoxes& boxes) const;
    bool save(OrganiserState& st, EditBoxes& boxes) const;
    /// Asks first; false when refused, declined or failed.
    bool remove(OrganiserState& st, EditBoxes& boxes) const;

private:
    QString folder() const { return m_ctx.itemFolder("Notes"); }
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
