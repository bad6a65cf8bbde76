#pragma once
// EMAILNEW, EMAILREPLY and EMAILFORWARD: each refuses when no account can
// send, sets every compose preset, opens the compose window modally and,
// for a forward, empties the scratch folder "EmailTemp" once it has closed.
// Reply and forward answer the message the e-mail screen shows; without one
// they do nothing.
#include "mail/compose/ComposePresets.h"

#include <QByteArray>
#include <functional>

class QWidget;

namespace mirel {

class EmailScreen;
class LayoutEngine;
class MailStore;
class MessageSink;
class frmEmail;

/// The three compose commands and the presets they share for the run.
class frmEmailCommands {
public:
    frmEmailCommands(const LayoutEngine& engine, const EmailAccountList& accounts, MailStore& store,
                     MessageSink& messages, QWidget* parent);

    void EmailNew();
    void EmailReply();
    void EmailForward();

    ComposePresets& presets() { return m_presets; }
    void setEmailScreen(EmailScreen* screen) { m_screen = screen; }
    /// Runs on each compose window before it opens (tests answer its prompts).
    void setPrepare(std::function<void(frmEmail&)> prepare) { m_prepare = std::move(prepare); }
    QString tempFolder() const;

private:
    bool accountCheck();
    bool presetFromShown();
    void openCompose();

    const LayoutEngine& m_engine;
    const EmailAccountList& m_accounts;
    MailStore& m_store;
    MessageSink& m_messages;
    QWidget* m_parent;
    EmailScreen* m_screen = nullptr;
    ComposePresets m_presets;
    std::function<void(frmEmail&)> m_prepare;
};

} // namespace mirel
