#pragma once
// To-do list: one file per task in the to-do folder, named like notes +
// ".tod"; line 1 the status ("0" open, anything else done), then the text.
// The hidden list holds "status + first text line<1>file name", so open
// tasks sort before done ones, each group by its first line.
#include "organiser/ItemBook.h"

namespace mirel {

/// The to-do screen's operations, on values. EditBoxes: body = the text
/// box, doneButtonVisible = the "BD" button.
class TodoList : public ItemBook {
public:
    explicit TodoList(const OrganiserContext& ctx) : ItemBook(ctx) {}

    void load(OrganiserState& st) const override;
    void show(const OrganiserState& st, int i, EditBoxes& boxes) const override;
    bool save(OrganiserState& st, EditBoxes& boxes) const;
    /// Marks the selected task done and saves it with the text box's text.
    bool markDone(OrganiserState& st, EditBoxes& boxes) const;
    bool remove(OrganiserState& st, EditBoxes& boxes) const;

private:
    QString folder() const { return m_ctx.itemFolder("Todo"); }
};

} // namespace mirel
