#pragma once
#include "ui/SkinDialog.h"

class QLabel;

namespace mirel {

class LayoutEngine;

/// The skinned yes/no question: a plain-text message (never rich text, it
/// may quote a theme's command or a server's name) and the buttons "OK"
/// (yes) and "QUIT" (no). Closing it any other way answers no.
class frmQuestion : public SkinDialog {
    Q_OBJECT
public:
    /// Lays itself out from section "QUESTION" of terminal.skn.
    frmQuestion(const LayoutEngine& engine, const QString& title, const QString& text,
                QWidget* parent = nullptr);
    ~frmQuestion() override;

    bool accepted() const { return m_accepted; }
    QLabel* message() const { return m_text; }

    void buttonClicked(int index) override;

    /// Shows the question modally and returns the answer.
    static bool ask(const LayoutEngine& engine, QWidget* parent, const QString& title,
                    const QString& text);

private:
    QLabel* m_text;
    bool m_accepted = false;
};

} // namespace mirel
