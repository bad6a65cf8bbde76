#pragma once
#include "mail/transport/EmailAccountList.h"
#include "ui/SkinDialog.h"

#include <QByteArray>
#include <functional>
#include <memory>

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
class frmEmailSendReceive : public SkinDialog {
    Q_OBJECT
public:
    frmEmailSendReceive(const LayoutEngine& engine, MailStore& store, const Clock& clock,
                        const EmailAccountList& accounts, const DebugLog* debugLog,
                        QWidget* parent = nullptr);
    ~frmEmailSendReceive() override;

    /// Appends a status line, scrolled into view, without a selection highlight.
    void StatusUpdate(const QByteArray& text);

    QListWidget* MLmessages() const { return m_status; }
    SendReceiveRunner& runner() { return *m_runner; }

    void buttonClicked(int index) override;

protected:
    /// The session starts once the window shows; finishing aborts it.
    void onShown() override;
    void onFinish() override;

private:
    QListWidget* m_status;
    QPushButton* m_cmdFake;
    std::unique_ptr<SendReceiveRunner> m_runner;
};

} // namespace mirel
