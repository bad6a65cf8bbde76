#pragma once
// The commands a skin button can give. A command is upper-cased and matched
// whole against this table ("Calendar2" is not "CALENDAR"); whatever matches
// nothing is handed to the desktop as a program, document or address.
#include <QByteArray>
#include <QByteArrayView>

namespace mirel {

enum class Command {
    None, // no match: start the command as written
    Address,
    AddressAdd,
    AddressSave,
    AddressDelete,
    AddressCancel,
    AddressImport,
    AddressExport,
    Agenda,
    AgendaPast,
    AgendaPresent,
    AgendaPriority, // arg: priority 0..7
    AgendaStep,     // arg: step code 0..13 (day, month, year, start and end time up/down)
    AgendaAdd,
    AgendaSave,
    AgendaDelete,
    AgendaCancel,
    AgendaPrintList,
    AgendaPrintItem,
    Calendar,
    Month, // arg: month 1..12
    MonthPrint,
    MonthAll,
    Logbook,
    LogAdd,
    LogCancel,
    LogSave,
    LogDelete,
    LogShowAll,
    LogSearch,
    Notes,
    NoteAdd,
    NoteCancel,
    NoteSave,
    NoteDelete,
    Todo,
    TodoAdd,
    TodoCancel,
    TodoSave,
    TodoDelete,
    TodoDone,
    Email,
    EmailPrint,
    EmailDelete,
    EmailMove,
    EmailSource,
    EmailNew,
    EmailReply,
    EmailForward,
    EmailConfig,
    EmailAccounts,
    EmailSendReceive,
    Overview, // back to the start screen
    Quit,
};

/// What a skin command means to the dispatcher.
struct CommandMatch {
    Command command = Command::None;
    int arg = 0;
    /// The table's own spelling of the command, for the debug log.
    QByteArray name;

    bool matched() const { return command != Command::None; }
};

/// Upper-cases skinCommand and looks it up; the first exact match wins.
CommandMatch matchCommand(QByteArrayView skinCommand);

/// The screen section a screen command switches to ("Notes", "Email", ...),
/// empty for commands that are no screen switch.
QByteArray screenOf(Command command);

} // namespace mirel
