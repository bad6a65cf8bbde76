#include "app/CommandTable.h"

namespace mirel {
namespace {

struct Row {
    const char* name;
    Command command;
    int arg;
};

// Order matters only where names could collide; whole-name matching means
// they never do, but the table keeps the order the skins were written in.
constexpr Row kTable[] = {
    {"ADDRESS", Command::Address, 0},
    {"ADDRESSADD", Command::AddressAdd, 0},
    {"ADDRESSSAVE", Command::AddressSave, 0},
    {"ADDRESSDELETE", Command::AddressDelete, 0},
    {"ADDRESSCANCEL", Command::AddressCancel, 0},
    {"ADDRESSIMPORT", Command::AddressImport, 0},
    {"ADDRESSEXPORT", Command::AddressExport, 0},
    {"AGENDA", Command::Agenda, 0},
    {"AGENDAPAST", Command::AgendaPast, 0},
    {"AGENDAPRESENT", Command::AgendaPresent, 0},
    {"AGENDAP0", Command::AgendaPriority, 0},
    {"AGENDAP1", Command::AgendaPriority, 1},
    {"AGENDAP2", Command::AgendaPriority, 2},
    {"AGENDAP3", Command::AgendaPriority, 3},
    {"AGENDAP4", Command::AgendaPriority, 4},
    {"AGENDAP5", Command::AgendaPriority, 5},
    {"AGENDAP6", Command::AgendaPriority, 6},
    {"AGENDAP7", Command::AgendaPriority, 7},
    {"MODEDAYUP", Command::AgendaStep, 0},
    {"MODEDAYDOWN", Command::AgendaStep, 1},
    {"MODEMONTHUP", Command::AgendaStep, 2},
    {"MODEMONTHDOWN", Command::AgendaStep, 3},
    {"MODEYEARUP", Command::AgendaStep, 4},
    {"MODEYEARDOWN", Command::AgendaStep, 5},
    {"STARTHOURUP", Command::AgendaStep, 6},
    {"STARTHOURDOWN", Command::AgendaStep, 7},
    {"STARTMINUP", Command::AgendaStep, 8},
    {"STARTMINDOWN", Command::AgendaStep, 9},
    {"ENDHOURUP", Command::AgendaStep, 10},
    {"ENDHOURDOWN", Command::AgendaStep, 11},
    {"ENDMINUP", Command::AgendaStep, 12},
    {"ENDMINDOWN", Command::AgendaStep, 13},
    {"AGENDAADD", Command::AgendaAdd, 0},
    {"AGENDASAVE", Command::AgendaSave, 0},
    {"AGENDADELETE", Command::AgendaDelete, 0},
    {"AGENDACANCEL", Command::AgendaCancel, 0},
    {"AGENDAPRINTLIST", Command::AgendaPrintList, 0},
    {"AGENDAPRINTITEM", Command::AgendaPrintItem, 0},
    {"CALENDAR", Command::Calendar, 0},
    {"MONTHJAN", Command::Month, 1},
    {"MONTHFEB", Command::Month, 2},
    {"MONTHMAR", Command::Month, 3},
    {"MONTHAPR", Command::Month, 4},
    {"MONTHMAY", Command::Month, 5},
    {"MONTHJUN", Command::Month, 6},
    {"MONTHJUL", Command::Month, 7},
    {"MONTHAUG", Command::Month, 8},
    {"MONTHSEP", Command::Month, 9},
    {"MONTHOCT", Command::Month, 10},
    {"MONTHNOV", Command::Month, 11},
    {"MONTHDEC", Command::Month, 12},
    {"MONTHPRINT", Command::MonthPrint, 0},
    {"MONTHALL", Command::MonthAll, 0},
    {"LOGBOOK", Command::Logbook, 0},
    {"LOGADD", Command::LogAdd, 0},
    {"LOGCANCEL", Command::LogCancel, 0},
    {"LOGSAVE", Command::LogSave, 0},
    {"LOGDELETE", Command::LogDelete, 0},
    {"LOGSHOWALL", Command::LogShowAll, 0},
    {"LOGSEARCH", Command::LogSearch, 0},
    {"NOTES", Command::Notes, 0},
    {"NOTEADD", Command::NoteAdd, 0},
    {"NOTECANCEL", Command::NoteCancel, 0},
    {"NOTESAVE", Command::NoteSave, 0},
    {"NOTEDELETE", Command::NoteDelete, 0},
    {"TODO", Command::Todo, 0},
    {"TODOADD", Command::TodoAdd, 0},
    {"TODOCANCEL", Command::TodoCancel, 0},
    {"TODOSAVE", Command::TodoSave, 0},
    {"TODODELETE", Command::TodoDelete, 0},
    {"TODODONE", Command::TodoDone, 0},
    {"EMAIL", Command::Email, 0},
    {"EMAILPRINT", Command::EmailPrint, 0},
    {"EMAILDELETE", Command::EmailDelete, 0},
    {"EMAILMOVE", Command::EmailMove, 0},
    {"EMAILSOURCE", Command::EmailSource, 0},
    {"EMAILNEW", Command::EmailNew, 0},
    {"EMAILREPLY", Command::EmailReply, 0},
    {"EMAILFORWARD", Command::EmailForward, 0},
    {"EMAILCONFIG", Command::EmailConfig, 0},
    {"EMAILACCOUNTS", Command::EmailAccounts, 0},
    {"EMAILSENDRECEIVE", Command::EmailSendReceive, 0},
    // Not among the family's commands: the way back to the start screen.
    {"OVERVIEW", Command::Overview, 0},
    {"QUIT", Command::Quit, 0},
};

} // namespace

CommandMatch matchCommand(QByteArrayView skinCommand) {
    const QByteArray upper = QByteArray(skinCommand.data(), skinCommand.size()).toUpper();
    for (const Row& row : kTable) {
        if (upper == row.name)
            return {row.command, row.arg, QByteArray(row.name)};
    }
    return {};
}

QByteArray screenOf(Command command) {
    switch (command) {
    case Command::Address:
        return QByteArrayLiteral("Address");
    case Command::Agenda:
        return QByteArrayLiteral("Agenda");
    case Command::Calendar:
        return QByteArrayLiteral("Calendar");
    case Command::Logbook:
        return QByteArrayLiteral("Logbook");
    case Command::Notes:
        return QByteArrayLiteral("Notes");
    case Command::Todo:
        return QByteArrayLiteral("Todo");
    case Command::Email:
        return QByteArrayLiteral("Email");
    case Command::Overview:
        return QByteArrayLiteral("Overview");
    default:
        return {};
    }
}

} // namespace mirel
