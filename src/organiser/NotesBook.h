#pragma once
// Notes: one file per note in the notes folder, named by the fourteen-digit
// local time of its first save + ".not"; line 1 the title, then the body.
// The hidden list holds "title<1>file name" sorted without regard to case,
// and the visible list shows the titles in the same order, so a row's
// position is the note's position in the hidden list.
#include "organiser/ItemBook.h"

namespace mirel {

/// The notes screen's operations, on values.
class NotesBook : public ItemBook {
public:
    explicit NotesBook(const OrganiserContext& ctx) : ItemBook(ctx) {}

    void load(OrganiserState& st) const override;
    void show(const OrganiserState& st, int i, EditBoxes& boxes) const override;
    bool save(OrganiserState& st, EditBoxes& boxes) const;
    /// Asks first; false when refused, declined or failed.
    bool remove(OrganiserState& st, EditBoxes& boxes) const;

private:
    QString folder() const { return m_ctx.itemFolder("Notes"); }
};

} // namespace mirel
