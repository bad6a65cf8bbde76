#pragma once
// The organiser on the main window: the start-up steps (data folders,
// overview texts, agenda, overview), filling each organiser screen after its
// section was laid out, the organiser commands, list clicks and the jumps
// from the overview. One instance lives as long as the main window.
#include "organiser/AddressScreen.h"
#include "organiser/AgendaScreen.h"
#include "organiser/CalendarScreen.h"
#include "organiser/ItemScreen.h"
#include "organiser/Overview.h"

#include <memory>

namespace mirel {

/// The organiser's part of the main window.
class OrganiserScreen {
public:
    /// openScreen switches the main window to a screen section and fills it
    /// (what the screen command of that name does).
    OrganiserScreen(SkinHost& host, OrganiserContext& ctx,
                    std::function<void(const QByteArray&)> openScreen);

    // Start-up steps, in their order.
    void prepareDataFolders();
    void readOverviewTexts();
    void loadAgenda();
    void showOverview();

    /// After a screen section was laid out.
    void fillScreen(const QByteArray& screen);
    /// An organiser command by its table name; false when it is none.
    bool command(const QByteArray& name, int arg);
    void listReleased(const QByteArray& screen);
    void overviewReleased();
    /// Told the mail folder number of an overview row before the e-mail screen opens.
    void setMailFolderChosen(std::function<void(int)> chosen) {
        m_mailFolderChosen = std::move(chosen);
    }
    void modeClicked() { m_agenda.modeClicked(); }
    /// A calendar day being typed in is saved before the screen or program changes.
    void commitCalendar() { m_calendar.commitTyping(); }
    void priorityChosen(int priority) { m_agenda.priorityChosen(priority); }

    OrganiserShared& shared() { return m_sh; }
    const OverviewTexts& texts() const { return m_texts; }
    AgendaScreen& agenda() { return m_agenda; }
    CalendarScreen& calendar() { return m_calendar; }

private:
    void placeMonthPicture();

    OrganiserShared m_sh;
    std::function<void(const QByteArray&)> m_openScreen;
    std::function<void(int)> m_mailFolderChosen;
    AgendaStore m_store;
    Overview m_overview;
    OverviewTexts m_texts;
    ItemScreen m_notes, m_log, m_todo;
    AddressScreen m_address;
    AgendaScreen m_agenda;
    CalendarScreen m_calendar;
};

} // namespace mirel
