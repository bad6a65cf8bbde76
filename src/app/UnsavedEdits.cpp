#include "app/UnsavedEdits.h"

#include "ui/SkinHost.h"

namespace mirel {

QByteArray UnsavedEdits::saveCommand(const QByteArray& screen) {
    if (screen == "Notes")
        return "NOTESAVE";
    if (screen == "Logbook")
        return "LOGSAVE";
    if (screen == "Todo")
        return "TODOSAVE";
    if (screen == "Address")
        return "ADDRESSSAVE";
    if (screen == "Agenda")
        return "AGENDASAVE";
    return {};
}

QString UnsavedEdits::capture(const SkinHost& host) {
    const QByteArray screen = host.state().currentScreen;
    if (saveCommand(screen).isEmpty())
        return {};
    const QChar sep(1);
    QString s;
    // The logbook's one-line box is its search text, not part of an entry.
    for (int i = screen == "Logbook" ? 2 : 1; host.textBox(i); ++i)
        s += host.textBox(i)->text() + sep;
    for (int i = 1; host.multiLine(i); ++i)
        s += host.multiLine(i)->toPlainText() + sep;
    // Labels carry the logbook stamp and the agenda's date and times.
    for (int i = 1; host.label(i); ++i)
        s += host.label(i)->text() + sep;
    if (screen != "Agenda")
        return s;
    // The agenda item's weekdays, kind and priority are buttons, not text.
    for (int i = 0; i < 7; ++i)
        if (const QCheckBox* c = host.checkButton(i))
            s += QLatin1Char(c->isChecked() ? '1' : '0');
    if (const QRadioButton* dated = host.modeButton(0))
        s += QLatin1Char(dated->isChecked() ? '1' : '0');
    return s + QString::number(host.state().selectedPriorityButton);
}

void UnsavedEdits::remember(const SkinHost& host) {
    m_screen = host.state().currentScreen;
    m_state = capture(host);
}

bool UnsavedEdits::changed(const SkinHost& host) const {
    return !saveCommand(host.state().currentScreen).isEmpty() &&
           host.state().currentScreen == m_screen && capture(host) != m_state;
}

} // namespace mirel
