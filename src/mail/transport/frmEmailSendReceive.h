#pragma once
#include "mail/transport/EmailAccountList.h"
#include "ui/SkinHost.h"

#include <QByteArray>
#include <functional>
#include <memory>

class QEventLoop;
class QListWidget;
class QPushButton;

namespace mirel {

class Clock;
class DebugLog;
class LayoutEngine;
class MailStore;
class SendReceiveRunner;

/// The send/receive window: one session, a status line per step, open until
/// the user clicks "OK" (also after the session ended or stopped on an error).
class frmEmailSendReceive : public SkinHost {
    Q_OBJECT
public:
    frmEmailSendReceive(const LayoutEngine& engine, MailStore& store, const Clock& clock,
                        const EmailAccountList& accounts, const DebugLog* debugLog,
                        QWidget* parent = nullptr);
    ~frmEmailSendReceive() override;

    /// Shows the window modally and runs the session; returns when it closes.
    void exec();
    /// Appends a status line, scrolled into view, without a selection highlight.
    void StatusUpdate(const QByteArray& text);

    QListWidget* MLmessages() const { return m_status; }
    SendReceiveRunner& runner() { return *m_runner; }
    /// Runs commands other than "OK"; by default as a detached program.
    void setCommandRunner(std::function<void(const QByteArray&)> run) { m_run = std::move(run); }

    void buttonClicked(int index) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void finish();

    std::unique_ptr<LayoutEngine> m_engine; // a copy, as every dialog keeps its switches
    QListWidget* m_status;
    QPushButton* m_cmdFake;
    std::unique_ptr<SendReceiveRunner> m_runner;
    std::function<void(const QByteArray&)> m_run;
    QEventLoop* m_loop = nullptr;
    bool m_finished = false;
};

} // namespace mirel
