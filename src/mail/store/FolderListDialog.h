#pragma once
// What the move dialog and the folder manager share: a skinned window
// whose list (the section's ML line) holds one folder per row, whose
// background is the handle to drag it by, and which Escape closes like its
// cancelling button.
#include "ui/SkinDialog.h"

#include <QByteArray>
#include <QList>
#include <optional>

class QListWidget;

namespace mirel {

class LayoutEngine;

/// A skinned dialog around a list of folder names.
class FolderListDialog : public SkinDialog {
    Q_OBJECT
public:
    ~FolderListDialog() override;

    QListWidget* MLmessages() const { return m_list; }
    void buttonClicked(int index) override;
    /// Runs one command as a skin button would (without its sound).
    virtual void runCommand(const QByteArray& command) = 0;

protected:
    /// Escape runs escapeCommand.
    FolderListDialog(const LayoutEngine& engine, QByteArray section, const QString& title,
                     QByteArray escapeCommand, QSize fallback, QWidget* parent);

    /// Rows in the given order, with the list's own colours; the row whose
    /// text is select becomes the current one.
    void fillRows(const QList<QByteArray>& rows, const QByteArray& select = {});
    /// The selected row's text, empty when none is selected.
    QByteArray selectedRow() const;

    void keyPressEvent(QKeyEvent* event) override;

private:
    QListWidget* m_list;
    QByteArray m_escape;
    // Where the pointer took hold of the background, while it is dragged.
};

} // namespace mirel
