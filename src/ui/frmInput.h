#pragma once
#include "ui/SkinDialog.h"

#include <QByteArray>

class QLabel;
class QLineEdit;

namespace mirel {

class LayoutEngine;

/// The skinned one-line input dialog. The result is empty unless the user
/// confirmed with "OK" or Enter; in password mode every character shows as "#".
class frmInput : public SkinDialog {
    Q_OBJECT
public:
    /// Lays itself out from section "INPUT" of terminal.skn (engine's folders).
    ~frmInput() override;
    frmInput(const LayoutEngine& engine, bool passwordMode, QWidget* parent = nullptr);

    /// The text confirmed by the user (Windows-1252), empty when cancelled.
    const QByteArray& InputResult() const { return m_result; }
    /// Asks a question: the window title, a line of prompt text above the
    /// box ("PromptBox" places it) and the proposed answer.
    void setPrompt(const QString& title, const QString& prompt, const QByteArray& proposal);
    QLineEdit* txtInput() const { return m_input; }
    /// Asks for something: the prompt shows where the skin's "Prompt" key
    /// places it (and is the window's title), the preset stands selected.
    void setPrompt(const QString& prompt, const QByteArray& preset);

    void buttonClicked(int index) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void onShown() override;

private:
    void confirm();

    QLineEdit* m_input;
    QLabel* m_prompt = nullptr;
    QByteArray m_result;
};

} // namespace mirel
