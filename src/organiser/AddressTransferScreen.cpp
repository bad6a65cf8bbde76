#include "organiser/AddressTransferScreen.h"

#include "organiser/frmImport.h"
#include "platform/Cp1252.h"
#include "ui/SkinHost.h"
#include "ui/frmInput.h"

#include <QDir>
#include <QLocale>

namespace mirel {

QString AddressTransferScreen::askPath(const QByteArray& promptKey) {
    const QByteArray prompt = m_exchange.skinText(promptKey);
    const QByteArray proposal =
        Cp1252::fromUnicode(QDir::homePath() + QStringLiteral("/torvex-addressbook.csv"));
    QByteArray path;
    if (m_prompt) {
        path = m_prompt(prompt, proposal);
    } else if (m_sh.engine) {
        frmInput dialog(*m_sh.engine, false, &m_sh.host);
        dialog.setPrompt(kMessageTitle, Cp1252::toUnicode(prompt), proposal);
        dialog.exec();
        path = dialog.InputResult();
    }
    return Cp1252::toUnicode(path);
}

void AddressTransferScreen::exportBook() {
    const QString path = askPath("textexport");
    if (!path.isEmpty())
        m_exchange.exportTo(path);
}

bool AddressTransferScreen::importFile() {
    const QString path = askPath("textimport");
    if (path.isEmpty() || !m_sh.engine)
        return false;
    const std::optional<AddressCsv> csv = m_exchange.open(path);
    if (!csv)
        return false;
    const QList<QByteArray> columns = csv->columns();
    const FieldCaptions captions = m_exchange.captions();
    frmImport dialog(*m_sh.engine, columns, captions, preselectColumns(columns, captions),
                     &m_sh.host);
    AddressExchange::Outcome outcome;
    dialog.setWork([&](const QByteArray& assignment) {
        outcome = m_exchange.importRecords(
            *csv, parseAssignment(assignment),
            [&dialog](int done, int total) { dialog.showProgress(done, total); });
    });
    dialog.exec();
    if (dialog.Assignment().isEmpty())
        return false;
    const int left = csv->refused + outcome.empty;
    if (left > 0 && !outcome.failed) {
        const QLocale locale;
        m_sh.ctx.messages.showMessage(
            QStringLiteral("%1 addresses imported. %2 lines were left out: they had no value "
                           "in the chosen columns, held NUL characters or were longer than "
                           "an address can be.")
                .arg(locale.toString(outcome.written), locale.toString(left)),
            kMessageTitle, MessageSink::Icon::Information);
    }
    return outcome.written > 0 || outcome.failed;
}

} // namespace mirel
