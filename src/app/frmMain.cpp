#include "app/frmMain.h"

#include "mail/compose/frmEmailCommands.h"
#include "mail/store/MailStore.h"
#include "mail/transport/AccountsFile.h"
#include "mail/transport/frmEmailAccounts.h"
#include "mail/transport/frmEmailSendReceive.h"
#include "mail/view/EmailScreen.h"
#include "mail/view/FolderScreen.h"
#include "organiser/OrganiserScreen.h"

#include "app/BundledTheme.h"
#include "app/CommandTable.h"
#include "app/OpenCommand.h"
#include "app/PasswordGate.h"
#include "app/ProgramConsent.h"
#include "app/ShellValues.h"
#include "app/SingleInstance.h"
#include "app/SkinChoice.h"
#include "app/WindowPlacement.h"
#include "platform/Clock.h"
#include "platform/Cp1252.h"
#include "platform/MessageSink.h"
#include "platform/SettingsStore.h"
#include "settings/CommaList.h"
#include "ui/LayoutEngine.h"
#include "ui/SkinButton.h"
#include "ui/SoundPlayer.h"
#include "ui/WindowLook.h"
#include "ui/frmInput.h"
#include "ui/frmQuestion.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFileInfo>
#include <QKeyEvent>
#include <QProcess>
#include <QScreen>
#include <QThread>
#include <QUrl>
#include <cstdio>

namespace mirel {
namespace {

const QByteArray kDefaultDhtmlMessage =
    "You need to install the additional DHTML libraries. Please visit the download section "
    "of the TORVEX Terminal web site to get them.";

// Screens whose general list shows organiser entries.
bool isOrganiserScreen(const QByteArray& screen) {
    static const QByteArray names[] = {"Address", "Agenda", "Calendar", "Logbook", "Notes", "Todo"};
    for (const QByteArray& n : names) {
        if (screen == n)
            return true;
    }
    return false;
}

} // namespace

frmMain::frmMain(SettingsStore& store, MessageSink& messages, const Clock& clock, QWidget* parent)
    : SkinHost(parent, Qt::FramelessWindowHint), m_store(store), m_messages(messages),
      m_clock(clock), m_ini(messages, store), m_poller(store) {
    // The exit mailbox must work from creation on, even while start-up runs.
    m_mailboxTimer.setInterval(500);
    connect(&m_mailboxTimer, &QTimer::timeout, this, &frmMain::pollMailboxes);
    m_mailboxTimer.start();
    // Dialog buttons that name a program go through the same question.
    SkinDialog::programStarter() = [this](const QByteArray& command, QWidget* dialog) {
        openWithDesktop(command, dialog);
    };

    // A drag sends many sizes; the screen is placed again once it rests.
    m_relayoutTimer.setSingleShot(true);
    m_relayoutTimer.setInterval(120);
    connect(&m_relayoutTimer, &QTimer::timeout, this, [this] {
        if (!m_engine || m_ended)
            return;
        setUpdatesEnabled(false);
        LayoutEngine::Relayout(*this);
        setUpdatesEnabled(true);
    });
}

void frmMain::keyPressEvent(QKeyEvent* event) {
    // Keys the focused control leaves unused: a text box keeps Delete and
    // its own Enter, a button its Enter and Space.
    const int key = event->key();
    const auto mods = event->modifiers() & ~Qt::KeypadModifier;
    const bool enter = (key == Qt::Key_Return || key == Qt::Key_Enter) && mods == Qt::NoModifier;
    if (enter && focusWidget() && focusWidget() == overviewList()) {
        overviewListReleased();
        return;
    }
    QList<QByteArray> endings;
    if (mods == Qt::ControlModifier && key == Qt::Key_S)
        endings = {"SAVE"};
    else if (mods == Qt::ControlModifier && key == Qt::Key_N)
        endings = {"ADD", "NEW"};
    else if (mods == Qt::NoModifier && key == Qt::Key_Delete)
        endings = {"DELETE"};
    else if (enter && state().currentScreen == "Logbook" && focusWidget() == textBox(1))
        endings = {"SEARCH"};
    for (int i = state().defaultButtonCount + 1; i <= state().buttonCount(); ++i) {
        const QByteArray command = state().button(i).command.toUpper();
        for (const QByteArray& ending : endings)
            if (command.endsWith(ending) && button(i) && button(i)->isVisible()) {
                ClickButton(i);
                return;
            }
    }
    SkinHost::keyPressEvent(event);
}

void frmMain::resizeEvent(QResizeEvent* event) {
    SkinHost::resizeEvent(event);
    m_relayoutTimer.start();
}

frmMain::~frmMain() {
    SkinDialog::programStarter() = nullptr;
}

QString frmMain::terminalSkn() const {
    return m_folders.themeFile(QStringLiteral("terminal.skn"));
}

bool frmMain::stopStarting() {
    if (m_exitPending && !m_ended) {
        m_starting = false;
        ShutDown();
    }
    return m_ended;
}

frmMain::StartResult frmMain::Form_Load() {
    m_starting = true;
    m_ready = false;
    state().defaultButtonCount = 0;

    if (m_singleInstance) {
        m_instance = std::make_unique<SingleInstance>(
            SingleInstance::serverName(QFileInfo(m_store.fileFor(kFamilyApp)).absolutePath()));
        // Wear another title while asking, so the earlier window is the only
        // one with the main caption.
        setWindowTitle(kSecondInstanceCaption);
        if (!m_instance->claimOrRaiseOther()) {
            m_mailboxTimer.stop();
            m_starting = false;
            m_ended = true;
            return StartResult::AlreadyRunning;
        }
        connect(m_instance.get(), &SingleInstance::raiseRequested, this, &frmMain::bringToFront);
    }
    setWindowTitle(kMainCaption);

    m_poller.reset();

    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect workArea = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    setGeometry(mainWindowRect(m_store, workArea));

    m_folders = Folders::fromStore(m_store);
    if (m_themeCandidates.isEmpty())
        m_themeCandidates = BundledTheme::candidates(QCoreApplication::applicationDirPath());
    BundledTheme::installIfMissing(m_folders, BundledTheme::locate(m_themeCandidates));

    m_controlBaseline = controlCount();

    const int screenWidth = screen ? screen->geometry().width() : 1024;
    m_folders.SkinName = chooseSkinName(m_ini, m_folders, screenWidth);

    m_userPassword = m_store.GetSetting(kFamilyApp, "DEFAULT", "Password");

    m_switches.read(m_ini, terminalSkn());
    m_debug = std::make_unique<DebugLog>(m_clock, m_folders.ProgramDir, m_switches.DebugOn);
    m_sounds = std::make_unique<SoundPlayer>(m_folders, m_ini);
    setSoundPlayer(m_sounds.get());
    m_engine = std::make_unique<LayoutEngine>(
        SkinContext{m_folders, m_ini, m_sounds.get(), m_switches.Animated, m_switches.AnimDelay});

    const QString skin = m_folders.skinFile();
    m_dhtmlMessage =
        m_ini.ReadIniKey("DEFAULT", "NoDhtmlEd", skin) ? m_ini.IniValue : kDefaultDhtmlMessage;
    if (m_ini.ReadIniKey("DEFAULT", "MinimumSize", skin)) {
        // Below the size the theme was drawn for, controls would overlap or leave the window.
        const QList<QByteArray> f = splitCommaList(m_ini.IniValue);
        setMinimumSize(int(leadingNumber(f.value(0))), int(leadingNumber(f.value(1))));
    }
    if (m_ini.ReadIniKey("DEFAULT", "BackGround", skin)) {
        const Rgb c = parseRgb(m_ini.IniValue);
        setBackgroundColour(QColor(c.r, c.g, c.b));
        QFont font = QApplication::font();
        if (m_ini.ReadIniKey("DEFAULT", "MessageFont", skin)) {
            const QList<QByteArray> f = splitCommaList(m_ini.IniValue);
            font.setFamily(Cp1252::toUnicode(f.value(0)));
            if (const long size = leadingNumber(f.value(1)); size > 0 && size < 100)
                font.setPointSize(int(size));
        }
        WindowLook::set(QColor(c.r, c.g, c.b), font);
    }
    if (m_ini.ReadIniKey("DEFAULT", "StartupSound", skin))
        play(m_ini.IniValue);

    static const char* const folderKeys[] = {"defin", "defout", "defsnd", "defdel"};
    for (int i = 0; i < 4; ++i) {
        if (m_ini.ReadIniKey("EMAIL", folderKeys[i], skin))
            m_mailFolderTitle[size_t(i)] = m_ini.IniValue;
    }

    prepareMailStore();
    loadMailAccounts();

    show();
    QCoreApplication::processEvents();
    if (stopStarting())
        return StartResult::Ended;

    m_engine->LayoutSection(*this, "DEFAULT", skin);
    if (stopStarting())
        return StartResult::Ended;
    startHoverTimer();

    prepareDataFolders();
    readOverviewTexts();
    loadAgenda();
    showOverview();
    prepareMailStore();
    // The HTML editor is part of the toolkit here, so there is nothing to
    // install and no message to show.

    m_starting = false;
    m_ready = true;
    log("Ready");
    if (qEnvironmentVariableIsSet(kReadyMarkerEnv)) {
        std::printf("Ready\n");
        std::fflush(stdout);
    }
    return StartResult::Ready;
}

void frmMain::showOverview() {
    if (ShowScreen("Overview"))
        fillScreen("Overview");
}

void frmMain::prepareMailStore() {
    // Runs twice during start-up, as the folders may have been copied in
    // between; every step of it only makes what is missing.
    if (!m_mailStore)
        m_mailStore = std::make_unique<MailStore>(m_folders.ProgramDir, m_clock, m_messages);
    if (!m_email)
        m_email = std::make_unique<EmailScreen>(*this, *m_mailStore);
    if (!m_mailFolders) {
        m_mailFolders = std::make_unique<FolderScreen>(*this, *m_email, *m_mailStore, m_messages,
                                                       *m_engine, FolderNames(m_mailFolderTitle));
        m_mailFolders->setCommandRunner([this](const QByteArray& command) {
            BusyFlag::Scope busy(m_busy);
            if (busy.acquired())
                dispatch(command);
        });
    }
    m_mailStore->MailStoreStartup(m_ini);
}

void frmMain::loadMailAccounts() {
    m_lstEmailAccounts = AccountsFile(m_ini, m_folders).LoadAccounts();
}

void frmMain::prepareDataFolders() {
    // The organiser lives from here on: the folders are final now.
    m_organiserContext =
        std::make_unique<OrganiserContext>(OrganiserContext{m_folders, m_ini, m_clock, m_messages});
    m_organiser = std::make_unique<OrganiserScreen>(*this, *m_organiserContext,
                                                    [this](const QByteArray& screen) {
                                                        if (ShowScreen(screen))
                                                            fillScreen(screen);
                                                    });
    m_organiser->setMailFolderChosen([this](int folder) {
        if (m_email)
            m_email->setCurrentFolder(QByteArray::number(folder));
    });
    m_organiser->shared().engine = m_engine.get();
    m_organiser->prepareDataFolders();
}

void frmMain::readOverviewTexts() {
    if (m_organiser)
        m_organiser->readOverviewTexts();
}

void frmMain::loadAgenda() {
    if (m_organiser)
        m_organiser->loadAgenda();
}

void frmMain::fillScreen(const QByteArray& screen) {
    if (screen == "Email" && m_mailFolders)
        m_mailFolders->ShowEmailScreen();
    if (m_organiser)
        m_organiser->fillScreen(screen);
    m_edits.remember(*this);
}

void frmMain::showListEntry(const QByteArray& screen) {
    if (m_organiser)
        m_organiser->listReleased(screen);
    m_edits.remember(*this);
}

void frmMain::jumpFromOverview() {
    if (m_organiser)
        m_organiser->overviewReleased();
    m_edits.remember(*this);
}

bool frmMain::organiserCommand(const QByteArray& name, int arg, bool step) {
    if (!m_organiser)
        return false;
    const QString before = UnsavedEdits::capture(*this);
    m_organiser->shared().saved = false;
    if (!m_organiser->command(name, arg))
        return false;
    // A refused delete or a failed save leaves the editor as it was: still unsaved,
    // also where the failed save put a placeholder into an empty box.
    const bool save = name == UnsavedEdits::saveCommand(state().currentScreen);
    if (m_organiser->shared().saved || (!step && !save && UnsavedEdits::capture(*this) != before))
        m_edits.remember(*this);
    return true;
}

bool frmMain::leaveEditor(bool ask) {
    if (m_organiser)
        m_organiser->commitCalendar();
    if (!m_edits.changed(*this))
        return true;
    if (ask) {
        switch (m_messages.askYesNoCancel(QStringLiteral("Save changes?"), kMessageTitle)) {
        case MessageSink::Answer::Cancel:
            return false;
        case MessageSink::Answer::No:
            m_edits.remember(*this);
            return true;
        case MessageSink::Answer::Yes:
            break;
        }
    }
    organiserCommand(UnsavedEdits::saveCommand(state().currentScreen), 0, false);
    // A save that failed has told why; the screen stays so nothing is lost.
    return !ask || !m_edits.changed(*this);
}

void frmMain::refreshAgendaEditor() {
    if (m_organiser)
        m_organiser->modeClicked();
}

void frmMain::agendaPriorityChosen(int priority) {
    if (m_organiser)
        m_organiser->priorityChosen(priority);
}

void frmMain::pollMailboxes() {
    if (m_ended || m_exitPending)
        return;
    // The clicks run after this tick has returned, one after another: a
    // command that opens a modal dialog must not hold up the timer, or an
    // exit request would wait until the dialog is closed by hand.
    QList<int> clicks;
    MailboxPoller::Buttons buttons{
        [this] { return state().buttonCount(); },
        [this](int i) { return state().button(i).command; },
        [&clicks](int i) { clicks.append(i); },
    };
    const MailboxPoller::Outcome outcome = m_poller.poll(m_ready, buttons);
    if (!clicks.isEmpty())
        QTimer::singleShot(0, this, [this, clicks] {
            for (int i : clicks)
                ClickButton(i);
        });
    if (outcome != MailboxPoller::Outcome::ShutDown)
        return;
    m_mailboxTimer.stop();
    if (m_starting || m_busy.busy()) {
        // Taking the window down under a running step would pull controls
        // from under it; the step finishes first. An open dialog is closed
        // as if cancelled, so that happens at once.
        m_exitPending = true;
        // A question may stand over the dialog that asked it: close them all.
        for (QWidget* modal = QApplication::activeModalWidget(); modal;) {
            modal->close();
            QWidget* next = QApplication::activeModalWidget();
            modal = next == modal ? nullptr : next;
        }
        return;
    }
    ShutDown();
}

void frmMain::ClickButton(int index) {
    if (m_ended || state().closing || !m_engine)
        return;
    if (index < 1 || index > state().buttonCount())
        return;
    {
        BusyFlag::Scope busy(m_busy);
        if (!busy.acquired())
            return;
        runClick(index);
    }
    // An exit request that came while the command ran (a dialog was open or
    // a screen was building up) is carried out now that it has unwound.
    if (m_exitPending && !m_starting && !m_ended)
        ShutDown();
}

void frmMain::runClick(int index) {
    // A copy: the command may switch screens and cut the table back.
    const SkinButtonEntry entry = state().button(index);

    const QByteArray section =
        index <= state().defaultButtonCount ? QByteArrayLiteral("DEFAULT") : state().currentScreen;
    if (PasswordGate::isProtected(m_ini, section, entry.keyNumber, m_folders.skinFile(),
                                  m_folders.skinOverrideFile())) {
        playTerminalSound("PassStartSound");
        const QByteArray entered = askPassword();
        if (m_exitPending || !PasswordGate::accepts(entered, m_userPassword)) {
            playTerminalSound("PassFailSound");
            return;
        }
        playTerminalSound("PassOkSound");
        QCoreApplication::processEvents();
        QThread::msleep(ulong(m_passwordPause));
    }

    play(entry.clickSound);
    dispatch(entry.command);
}

QByteArray frmMain::askPassword() {
    if (m_prompt)
        return m_prompt();
    frmInput dialog(*m_engine, true, this);
    dialog.exec();
    return dialog.InputResult();
}

void frmMain::dispatch(const QByteArray& command) {
    const CommandMatch match = matchCommand(command);
    if (!match.matched()) {
        if (m_open)
            m_open(command);
        else
            openWithDesktop(command);
        return;
    }
    switch (match.command) {
    case Command::Address:
    case Command::Calendar:
    case Command::Logbook:
    case Command::Notes:
    case Command::Todo:
    case Command::Email:
    case Command::Overview:
        // "Mail" opens the inbox (a folder chosen elsewhere is opened
        // there); otherwise the screen already shown keeps its boxes and its
        // selection.
        if (match.command == Command::Email && m_email &&
            m_email->view().currentFolder() != MailStore::kInbox) {
            m_email->setCurrentFolder(MailStore::kInbox);
            if (state().currentScreen == "Email" || ShowScreen("Email"))
                fillScreen("Email");
            return;
        }
        if (ShowScreen(screenOf(match.command)))
            fillScreen(screenOf(match.command));
        return;
    case Command::Agenda:
        if (!ShowScreen("Agenda"))
            return;
        m_agendaViewMode = 1;
        fillScreen("Agenda");
        return;
    case Command::AgendaPriority:
        choosePriority(match.arg);
        return;
    case Command::EmailSendReceive:
        if (m_mailStore && m_engine)
            frmEmailSendReceive(*m_engine, *m_mailStore, m_clock, m_lstEmailAccounts, m_debug.get(),
                                this)
                .exec();
        refreshAfterMail();
        return;
    case Command::Quit:
        if (leaveEditor(true))
            ShutDown();
        return;
    case Command::EmailAccounts: {
        const AccountsFile file(m_ini, m_folders);
        frmEmailAccounts accounts(*m_engine, m_lstEmailAccounts, file, m_messages, this);
        accounts.exec();
        if (accounts.saved())
            loadMailAccounts();
        return;
    }
    case Command::AgendaPrintList:
    case Command::AgendaPrintItem:
        printAgenda(match.command == Command::AgendaPrintList);
        return;
    case Command::MonthPrint:
    case Command::MonthAll:
        if (m_organiser) {
            const int shown = m_organiser->calendar().month();
            match.command == Command::MonthAll ? printMonths(1, 12) : printMonths(shown, shown);
        }
        return;
    case Command::EmailPrint:
        printMessage();
        return;
    case Command::EmailMove:
        if (m_mailFolders)
            m_mailFolders->MoveSelectedMessages();
        return;
    case Command::EmailDelete:
        if (m_mailFolders)
            m_mailFolders->DeleteSelectedMessages();
        return;
    case Command::EmailConfig:
        if (m_mailFolders)
            m_mailFolders->FolderManagerDialog();
        if (state().currentScreen == "Overview")
            fillScreen("Overview");
        return;
    case Command::EmailSource:
        if (m_email)
            m_email->ShowMessageSource();
        return;
    case Command::EmailNew:
    case Command::EmailReply:
    case Command::EmailForward:
        if (!m_mailStore || !m_engine)
            return;
        if (!m_compose)
            m_compose = std::make_unique<frmEmailCommands>(*m_engine, m_lstEmailAccounts,
                                                           *m_mailStore, m_messages, this);
        m_compose->setEmailScreen(m_email.get());
        if (match.command == Command::EmailNew)
            m_compose->EmailNew();
        else if (match.command == Command::EmailReply)
            m_compose->EmailReply();
        else
            m_compose->EmailForward();
        return;
    default:
        if (organiserCommand(match.name, match.arg, match.command == Command::AgendaStep))
            return;
        notYetAvailable(match.name);
        return;
    }
}

bool frmMain::ShowScreen(const QByteArray& name) {
    if (!m_engine || name == state().currentScreen || !leaveEditor(true))
        return false;
    if (!state().currentScreen.isEmpty())
        m_engine->ClearScreen(*this);
    state().currentScreen = name;
    m_engine->LayoutSection(*this, name, m_folders.skinFile());
    log("Screen " + name);
    return true;
}

void frmMain::refreshAfterMail() {
    // New mail shows in the message list and the overview; an organiser
    // screen keeps what is being typed in it.
    if (m_mailFolders && state().currentScreen == "Email")
        m_mailFolders->ShowEmailScreen();
    if (m_organiser)
        m_organiser->showOverview();
}

void frmMain::choosePriority(int priority) {
    selectPriority(priority);
    agendaPriorityChosen(priority);
}

void frmMain::ShutDown() {
    if (m_ended)
        return;
    leaveEditor(false); // the exit request of the shell cannot wait for an answer
    m_ended = true;
    m_ready = false;
    m_mailboxTimer.stop();
    hoverTimer().stop();
    state().closing = true;
    if (m_engine && !state().currentScreen.isEmpty())
        m_engine->ClearScreen(*this);

    if (m_engine) {
        // The switches are read again so an edited theme animates its exit.
        m_engine->readAnimation("DEFAULT", terminalSkn());
        m_engine->unloadControls(*this, m_controlBaseline);
    }
    log("Shut down");
    hide();
    QCoreApplication::exit(0);
}

void frmMain::closeEvent(QCloseEvent* event) {
    // Closing the window by the desktop's means ends the program the same
    // way "QUIT" does.
    if (!m_ended && !leaveEditor(true)) {
        event->ignore();
        return;
    }
    if (!m_ended)
        ShutDown();
    event->accept();
}

void frmMain::generalListReleased() {
    const QByteArray screen = state().currentScreen;
    if (!isOrganiserScreen(screen))
        return;
    if (m_ini.ReadIniKey(screen, "load", m_folders.skinFile()))
        play(m_ini.IniValue);
    showListEntry(screen);
}

void frmMain::overviewListReleased() {
    if (m_ini.ReadIniKey("Overview", "load", m_folders.skinFile()))
        play(m_ini.IniValue);
    jumpFromOverview();
}

void frmMain::modeButtonClicked(int) {
    refreshAgendaEditor();
}

void frmMain::openWithDesktop(const QByteArray& command, QWidget* parent) {
    const OpenCommand open = OpenCommand::parse(command);
    QString target;
    const OpenCommand::Target kind = open.classify(m_folders.ProgramDir, &target);
    if (kind != OpenCommand::Target::Nothing &&
        ProgramConsent::needsAsking(target, kind == OpenCommand::Target::Address) &&
        !mayStart(command, target, parent ? parent : this)) {
        log("Not started (refused): " + command);
        return;
    }
    switch (kind) {
    case OpenCommand::Target::Program:
        QProcess::startDetached(target, QProcess::splitCommand(Cp1252::toUnicode(open.parameters)),
                                m_folders.ProgramDir);
        break;
    case OpenCommand::Target::Address:
        QDesktopServices::openUrl(QUrl(target));
        break;
    case OpenCommand::Target::Document:
        QDesktopServices::openUrl(QUrl::fromLocalFile(target));
        break;
    case OpenCommand::Target::Nothing:
        log("Nothing to open for " + command);
        break;
    }
}

bool frmMain::mayStart(const QByteArray& command, const QString& target, QWidget* parent) {
    const ProgramConsent consent(m_folders.path(QStringLiteral("\\programs.ini")),
                                 m_folders.ThemeDir);
    switch (consent.answer(command)) {
    case ProgramConsent::Answer::Allowed:
        return true;
    case ProgramConsent::Answer::Refused:
        return false;
    case ProgramConsent::Answer::Unknown:
        break;
    }
    const QString title = QStringLiteral("Start a program?");
    const QString text =
        QStringLiteral("A button of this theme wants to start:\n\n%1\n\n(%2)\n\nStart it? "
                       "Mirel remembers a yes for this theme and this command.")
            .arg(Cp1252::toUnicode(command), target);
    const bool yes = m_question ? m_question(title, text)
                     : m_engine ? frmQuestion::ask(*m_engine, parent, title, text)
                                : false;
    if (!consent.remember(command, yes))
        log("Cannot remember the answer for " + command);
    return yes;
}

void frmMain::playTerminalSound(const char* key) {
    if (m_ini.ReadIniKey("DEFAULT", key, terminalSkn()))
        play(m_ini.IniValue);
}

void frmMain::play(const QByteArray& name) {
    if (m_sounds && !name.isEmpty())
        m_sounds->PlaySkinSound(name, false);
}

void frmMain::log(const QByteArray& line) const {
    if (m_debug)
        m_debug->WriteDebugLog(line);
}

void frmMain::notYetAvailable(const QByteArray& command) const {
    log(command + " is not available in this version");
}

void frmMain::bringToFront() {
    if (isMinimized())
        showNormal();
    raise();
    activateWindow();
}

} // namespace mirel
