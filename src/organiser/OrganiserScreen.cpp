#include "organiser/OrganiserScreen.h"

#include "organiser/DataFolders.h"
#include "settings/CommaList.h"
#include "skin/Placement.h"
#include "ui/LayoutEngine.h"
#include "ui/SkinHost.h"
#include "ui/TextBridge.h"

namespace mirel {

OrganiserScreen::OrganiserScreen(SkinHost& host, OrganiserContext& ctx,
                                 std::function<void(const QByteArray&)> openScreen)
    : m_sh{host, ctx}, m_openScreen(std::move(openScreen)), m_store(ctx), m_overview(ctx),
      m_notes(m_sh, ItemScreen::Kind::Notes), m_log(m_sh, ItemScreen::Kind::Logbook),
      m_todo(m_sh, ItemScreen::Kind::Todo), m_address(m_sh), m_agenda(m_sh, m_store),
      m_calendar(m_sh, [this] { showOverview(); }) {
    // Every save or delete of the organiser refreshes the overview.
    ctx.refreshOverview = [this] { showOverview(); };
}

void OrganiserScreen::prepareDataFolders() {
    DataFolders(m_sh.ctx).bootstrap();
}

void OrganiserScreen::readOverviewTexts() {
    m_texts = m_overview.readTexts();
    placeMonthPicture();
}

void OrganiserScreen::placeMonthPicture() {
    if (!m_sh.ctx.ini.ReadIniKey("CALENDAR", "month", m_sh.ctx.folders.skinFile()))
        return;
    const QList<QByteArray> f = splitCommaList(m_sh.ctx.ini.IniValue);
    if (f.size() < 4)
        return;
    QWidget* pic = m_sh.host.placed(PlacedPart::MonthPicture);
    pic->setGeometry(
        placeRect(f[0], f[1], f[2], f[3], m_sh.host.size(), StretchRule::BelowOne, true));
    LayoutEngine::rememberPlacement(pic, "P,month," + m_sh.ctx.ini.IniValue);
    pic->hide();
}

void OrganiserScreen::loadAgenda() {
    m_store.load(m_sh.agenda);
}

void OrganiserScreen::showOverview() {
    // The agenda lists are rebuilt first so the overview always shows the
    // store as saved, and "today" moves on over midnight.
    m_store.load(m_sh.agenda);
    SortedList rows{false};
    m_overview.refresh(m_texts, m_sh.agenda, rows, m_sh.lstSorted2);
    fillList(m_sh.host.overviewList(), rows);
}

void OrganiserScreen::fillScreen(const QByteArray& screen) {
    if (screen == "Notes")
        m_notes.fill();
    else if (screen == "Logbook")
        m_log.fill();
    else if (screen == "Todo")
        m_todo.fill();
    else if (screen == "Address")
        m_address.fill();
    else if (screen == "Agenda")
        m_agenda.fill();
    else if (screen == "Calendar")
        m_calendar.fill(m_sh.ctx.clock.now().date().month());
    else if (screen == "Overview")
        showOverview();
}

bool OrganiserScreen::command(const QByteArray& name, int arg) {
    const QByteArray screen = m_sh.host.state().currentScreen;
    if (screen == "Notes" && m_notes.command(name))
        return true;
    if (screen == "Logbook" && m_log.command(name))
        return true;
    if (screen == "Todo" && m_todo.command(name))
        return true;
    if (screen == "Address" && m_address.command(name))
        return true;
    if (screen == "Agenda" && m_agenda.command(name, arg))
        return true;
    if (screen == "Calendar" && m_calendar.command(name, arg))
        return true;
    return false;
}

void OrganiserScreen::listReleased(const QByteArray& screen) {
    if (screen == "Notes")
        m_notes.listClicked();
    else if (screen == "Logbook")
        m_log.listClicked();
    else if (screen == "Todo")
        m_todo.listClicked();
    else if (screen == "Address")
        m_address.listClicked();
    else if (screen == "Agenda")
        m_agenda.listClicked();
    else if (screen == "Calendar")
        m_calendar.listClicked();
}

void OrganiserScreen::overviewReleased() {
    bool hasText = false;
    const int code = currentItemData(m_sh.host.overviewList(), &hasText);
    if (!hasText)
        return;
    const OverviewTarget t = Overview::target(code);
    switch (t.screen) {
    case OverviewTarget::Agenda:
        m_openScreen("Agenda");
        if (t.agendaItem >= 0)
            m_agenda.showItem(t.agendaItem);
        break;
    case OverviewTarget::Calendar:
        m_openScreen("Calendar");
        if (t.month > 0)
            m_calendar.showDay(t.month, t.day);
        break;
    case OverviewTarget::Email:
        if (t.mailFolder >= 0 && m_mailFolderChosen)
            m_mailFolderChosen(t.mailFolder);
        m_openScreen("Email");
        break;
    case OverviewTarget::Todo: {
        m_openScreen("Todo");
        // The overview counts open tasks only; find the same file in the full list.
        const QByteArray file = afterSep(m_sh.lstSorted2.text(t.task));
        const QList<ListEntry>& all = m_sh.state.lstSorted1.entries();
        for (qsizetype i = 0; i < all.size(); ++i)
            if (!file.isEmpty() && afterSep(all[i].text) == file) {
                if (QListWidget* list = m_sh.host.generalList())
                    list->setCurrentRow(int(i));
                m_todo.listClicked();
            }
        break;
    }
    case OverviewTarget::None:
        break;
    }
}

} // namespace mirel
