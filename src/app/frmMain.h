#pragma once
// The main window. It lives for the whole run, owns every screen control and
// the shell-wide values, runs the start-up and shut-down sequences, polls the
// family shell's mailboxes and dispatches every skin button's command.
//
// States: created (start-up running, Ready false) -> ready (input accepted)
// -> closing (controls being taken down) -> ended. The exit mailbox is
// honoured in every state; the command mailbox only when ready. While the
// start-up sequence or a command runs, an exit request found by the timer is
// carried out as soon as that step has finished (an open dialog is closed as
// cancelled), so no step ever continues over a window already taken down.
#include "app/BusyFlag.h"
#include "app/MailboxPoller.h"
#include "app/ThemeSwitches.h"
#include "app/UnsavedEdits.h"
#include "mail/transport/EmailAccountList.h"
#include "settings/DebugLog.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/SkinHost.h"

#include <QByteArray>
#include <QTimer>
#include <array>
#include <functional>
#include <memory>

namespace mirel {

class Clock;
class EmailScreen;
class frmEmailCommands;
class FolderScreen;
class LayoutEngine;
class MailStore;
class MessageSink;
class OrganiserScreen;
struct OrganiserContext;
class SettingsStore;
class SingleInstance;
class SoundPlayer;

/// The main window: start-up, mailboxes, ClickButton, ShowScreen, shut-down.
class frmMain : public SkinHost {
    Q_OBJECT
public:
    enum class StartResult { Ready, AlreadyRunning, Ended };

    frmMain(SettingsStore& store, MessageSink& messages, const Clock& clock,
            QWidget* parent = nullptr);
    ~frmMain() override;

    /// Runs the start-up sequence. AlreadyRunning: another instance was asked
    /// to come forward and this one must end. Ended: the exit mailbox was
    /// raised during start-up and the window is already taken down.
    StartResult Form_Load();

    bool Ready() const { return m_ready; }
    bool ended() const { return m_ended; }

    void ClickButton(int index);
    /// False when the screen was shown already (nothing changes then).
    bool ShowScreen(const QByteArray& name);
    /// The shut-down sequence; the process's event loop is told to end.
    void ShutDown();

    const Folders& folders() const { return m_folders; }
    const ThemeSwitches& switches() const { return m_switches; }
    IniHelpers& ini() { return m_ini; }
    LayoutEngine* engine() const { return m_engine.get(); }
    const QByteArray& UserPassword() const { return m_userPassword; }
    const QByteArray& DhtmlMessage() const { return m_dhtmlMessage; }
    const std::array<QByteArray, 4>& MailFolderTitle() const { return m_mailFolderTitle; }
    int ControlBaseline() const { return m_controlBaseline; }
    /// The mail store (null until the start-up sequence made it ready).
    MailStore* mailStore() const { return m_mailStore.get(); }
    /// The account list, loaded at start and after the account manager saves.
    EmailAccountList& lstEmailAccounts() { return m_lstEmailAccounts; }
    /// The e-mail screen's list and view (null until the mail store is ready).
    EmailScreen* emailScreen() const { return m_email.get(); }
    FolderScreen* folderScreen() const { return m_mailFolders.get(); }

    /// Where the bundled theme is looked for on a first start (tests point it elsewhere).
    void setBundledThemeCandidates(QStringList dirs) { m_themeCandidates = std::move(dirs); }
    /// The pause after a correct password; tests shorten it.
    void setPasswordPause(int ms) { m_passwordPause = ms; }
    /// Asks the password for protected buttons; the default shows frmInput.
    void setPasswordPrompt(std::function<QByteArray()> prompt) { m_prompt = std::move(prompt); }
    /// Starts commands that name no operation; the default hands them to the desktop.
    void setOpenHandler(std::function<void(const QByteArray&)> open) { m_open = std::move(open); }
    /// Replaces the skinned yes/no question (title, text) -> yes.
    void setQuestion(std::function<bool(const QString&, const QString&)> ask) {
        m_question = std::move(ask);
    }
    /// Leaves out the single-instance rule (several windows in one test process).
    void setSingleInstanceEnabled(bool on) { m_singleInstance = on; }
    /// The selected priority button (0 = none).
    int selectedPriorityButton() const { return state().selectedPriorityButton; }

    void buttonClicked(int index) override { ClickButton(index); }
    void generalListReleased() override;
    void overviewListReleased() override;
    void modeButtonClicked(int index) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// Ctrl+S, Ctrl+N and Delete run the shown screen's save, new and delete
    /// buttons; Enter opens an overview row and searches the logbook.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void pollMailboxes();
    void runClick(int index);
    void dispatch(const QByteArray& command);
    /// AGENDAP0..7: the slot's button becomes the lit, selected one.
    void choosePriority(int priority);
    void openWithDesktop(const QByteArray& command, QWidget* parent = nullptr);
    /// Asks before a theme starts something for the first time.
    bool mayStart(const QByteArray& command, const QString& target, QWidget* parent);
    QByteArray askPassword();
    void playTerminalSound(const char* key);
    void play(const QByteArray& name);
    void log(const QByteArray& line) const;
    void notYetAvailable(const QByteArray& command) const;
    void bringToFront();
    /// True when start-up must stop here (an exit request was carried out).
    bool stopStarting();
    QString terminalSkn() const;

    // Steps that later parts of the program fill in. Each is called at its
    // place in the start-up sequence or after its screen was laid out.
    void prepareMailStore();
    void loadMailAccounts();
    void prepareDataFolders();
    void readOverviewTexts();
    void loadAgenda();
    void showOverview();
    void fillScreen(const QByteArray& screen);
    void showListEntry(const QByteArray& screen);
    void jumpFromOverview();
    void refreshAgendaEditor();
    void agendaPriorityChosen(int priority);
    // The print commands (frmMainPrint.cpp): one print job each.
    void printAgenda(bool wholeList);
    void printMonths(int first, int last);
    void printMessage();
    void refreshAfterMail();
    /// An organiser command; afterwards the editor counts as unchanged when
    /// the command saved it or loaded other values into it.
    bool organiserCommand(const QByteArray& name, int arg, bool step);
    /// Before the shown screen goes: "Save changes?" for an editor with
    /// unsaved changes (or a save without asking). False: stay.
    bool leaveEditor(bool ask);

    SettingsStore& m_store;
    MessageSink& m_messages;
    const Clock& m_clock;
    IniHelpers m_ini;
    Folders m_folders;
    ThemeSwitches m_switches;
    std::unique_ptr<DebugLog> m_debug;
    std::unique_ptr<SoundPlayer> m_sounds;
    std::unique_ptr<LayoutEngine> m_engine;
    std::unique_ptr<SingleInstance> m_instance;
    std::unique_ptr<MailStore> m_mailStore;
    std::unique_ptr<EmailScreen> m_email;
    std::unique_ptr<frmEmailCommands> m_compose; // made at the first compose command
    std::unique_ptr<FolderScreen> m_mailFolders;
    EmailAccountList m_lstEmailAccounts;
    std::unique_ptr<OrganiserContext> m_organiserContext;
    std::unique_ptr<OrganiserScreen> m_organiser;
    MailboxPoller m_poller;
    QTimer m_mailboxTimer;
    QTimer m_relayoutTimer;
    BusyFlag m_busy;
    UnsavedEdits m_edits;

    bool m_ready = false;
    bool m_starting = false;
    bool m_exitPending = false;
    bool m_ended = false;
    bool m_singleInstance = true;
    int m_controlBaseline = 0;
    int m_passwordPause = 2000;
    int m_agendaViewMode = 0;
    QByteArray m_userPassword;
    QByteArray m_dhtmlMessage;
    std::array<QByteArray, 4> m_mailFolderTitle;
    QStringList m_themeCandidates;
    std::function<QByteArray()> m_prompt;
    std::function<void(const QByteArray&)> m_open;
    std::function<bool(const QString&, const QString&)> m_question;
};

} // namespace mirel
