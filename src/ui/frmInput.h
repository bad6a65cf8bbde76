#pragma once
#include "ui/SkinHost.h"

#include <QByteArray>
#include <functional>
#include <memory>

class QEventLoop;
class QLineEdit;

namespace mirel {

class LayoutEngine;

/// The skinned one-line input dialog. The result is empty unless the user
/// confirmed with "OK" or Enter; in password mode every character shows as "#".
class frmInput : public SkinHost {
    Q_OBJECT
  public:
    /// Lays itself out from section "INPUT" of terminal.skn (engine's folders).
    ~frmInput() override;
    frmInput(const LayoutEngine& engine, bool passwordMode, QWidget* parent = nullptr);

    /// Shows the dialog modally; returns when it closes.
    void exec();
    /// The text confirmed by the user (Windows-1252), empty when cancelled.
    const QByteArray& InputResult() const { return m_result; }
    QLineEdit* txtInput() const { return m_input; }

    /// Runs commands other than "OK" and "QUIT"; by default as a detached program.
    void setCommandRunner(std::function<void(const QByteArray&)> run) { m_run = std::move(run); }

    void buttonClicked(int index) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void confirm();
    void finish();
    void applyInputBox(const QByteArray& value);

    // A copy: the dialog's own "STARTUP" animation switches must not leak
    // into the main window's engine.
    std::unique_ptr<LayoutEngine> m_engine;
    QLineEdit* m_input;
    QByteArray m_result;
    std::function<void(const QByteArray&)> m_run;
    QEventLoop* m_loop = nullptr;
};

} // namespace mirel
