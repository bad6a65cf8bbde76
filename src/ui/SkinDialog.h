#pragma once
// The skinned modal dialogs share one way of coming to life: each takes its
// own copy of the layout engine (so the "STARTUP" animation switches of the
// dialogs never reach the main window's engine), reads its section of
// "terminal.skn" for the background picture and the mask colour, lays the
// section out, takes the outline of the background, runs the hover pass,
// and runs modally until it finishes. Finishing happens once.
#include "ui/SkinHost.h"

#include <QByteArray>
#include <QImage>
#include <functional>
#include <memory>
#include <optional>

class QEventLoop;

namespace mirel {

class LayoutEngine;
struct SkinContext;

/// Base of frmInput and of the mail client's dialogs.
class SkinDialog : public SkinHost {
    Q_OBJECT
public:
    ~SkinDialog() override;

    /// Shows the dialog modally, centred over its parent; returns once it finished.
    void exec();
    bool isFinished() const { return m_finished; }
    /// Starts commands the dialog does not know; by default through
    /// programStarter.
    void setCommandRunner(std::function<void(const QByteArray&)> run) { m_run = std::move(run); }
    /// How every dialog starts a theme's command (the main window asks the
    /// user first); unset, such commands do nothing.
    static std::function<void(const QByteArray&, QWidget*)>& programStarter();

protected:
    SkinDialog(const LayoutEngine& engine, QByteArray section, const QString& title,
               QWidget* parent);

    LayoutEngine& engine() { return *m_engine; }
    const SkinContext& context() const;
    const QString& skinFile() const { return m_skin; }
    /// A dialog laid out from the screen skin instead of "terminal.skn".
    void setSkinFile(const QString& file) { m_skin = file; }
    const QByteArray& section() const { return m_section; }

    /// Sizes the window to the section's background picture (fallback
    /// without one) and lays the section out with the "STARTUP" switches.
    void layOut(QSize fallback);
    /// Cuts the outline from the background and starts the hover pass; call
    /// it after the dialog has placed its own controls.
    void shapeAndHover();
    /// Ends the modal run (once): closing flag, hover stopped, hidden.
    void finish();
    /// Hooks around the modal run.
    virtual void onShown() {}
    virtual void onFinish() {}
    void startProgram(const QByteArray& command) const;
    /// Places a text box from a skin value
    /// "left,top,width,height,R,G,B (ground),R,G,B (text),font,size".
    void applyBox(QWidget* box, const QByteArray& value) const;

    void closeEvent(QCloseEvent* event) override;
    /// Escape runs the dialog's "QUIT" button, Enter its "OK" button.
    void keyPressEvent(QKeyEvent* event) override;
    /// Without a frame, the background itself is the handle to move it by.
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    std::unique_ptr<LayoutEngine> m_engine;
    QByteArray m_section;
    QString m_skin;
    QImage m_background;
    QRgb m_mask;
    std::function<void(const QByteArray&)> m_run;
    QEventLoop* m_loop = nullptr;
    bool m_finished = false;
    std::optional<QPoint> m_dragFrom;
};

} // namespace mirel
