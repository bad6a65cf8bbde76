#include "organiser/frmImport.h"

#include "platform/Cp1252.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/SoundPlayer.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <algorithm>

namespace mirel {

frmImport::frmImport(const LayoutEngine& engine, const QList<QByteArray>& columns,
                     const FieldCaptions& captions, const ColumnAssignment& preselected,
                     QWidget* parent)
    : SkinDialog(engine, kSection, QStringLiteral("Import addresses"), parent) {
    layOut(QSize(660, 470));
    IniHelpers& ini = context().ini;
    QStringList choices{QString()};
    for (qsizetype c = 0; c < columns.size(); ++c) {
        const QString name = Cp1252::toUnicode(columns[c]).trimmed();
        choices.append(name.isEmpty() ? QStringLiteral("(column %1)").arg(c + 1) : name);
    }
    for (int k = 0; k < 17; ++k) {
        auto* box = new QComboBox(this);
        box->setObjectName(QStringLiteral("comField%1").arg(k));
        box->setAccessibleName(Cp1252::toUnicode(captions[k]));
        box->addItems(choices);
        box->setMaxVisibleItems(16);
        box->setCurrentIndex(preselected[k] <= columns.size() ? preselected[k] : 0);
        const QByteArray key = QByteArray("field") + QByteArray::number(k).rightJustified(2, '0');
        // A list the skin does not place still holds its field's choice.
        if (ini.ReadIniKey(kSection, key, skinFile()))
            applyBox(box, ini.IniValue);
        else
            box->hide();
        watchHover(box);
        m_fields[k] = box;
    }
    m_progress = new QLabel(this);
    m_progress->setObjectName(QStringLiteral("lblProgress"));
    m_progress->setTextFormat(Qt::PlainText);
    if (ini.ReadIniKey(kSection, "progress", skinFile()))
        applyBox(m_progress, ini.IniValue);
    else
        m_progress->setGeometry(20, height() - 30, width() / 2, 22);
    m_progress->hide();
    shapeAndHover();
}

frmImport::~frmImport() = default;

void frmImport::showProgress(int done, int total) {
    // Redrawing for every contact would cost more than writing it.
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (done < total && now - m_lastShown < 80)
        return;
    m_lastShown = now;
    const QLocale locale;
    m_progress->setText(
        tr("Importing %1 of %2 addresses…").arg(locale.toString(done), locale.toString(total)));
    m_progress->show();
    QCoreApplication::processEvents();
}

void frmImport::buttonClicked(int index) {
    if (m_busy)
        return;
    const SkinButtonEntry& b = state().button(index);
    if (SoundPlayer* sounds = soundPlayer())
        sounds->PlaySkinSound(b.clickSound, false);
    runCommand(b.command);
}

void frmImport::runCommand(const QByteArray& command) {
    const QByteArray upper = command.toUpper();
    if (upper == "OK") {
        ColumnAssignment a{};
        for (int k = 0; k < 17; ++k)
            a[k] = std::max(0, m_fields[k]->currentIndex());
        m_assignment = formatAssignment(a);
        m_busy = true;
        for (QComboBox* box : m_fields)
            box->setEnabled(false);
        if (m_work)
            m_work(m_assignment);
        m_busy = false;
        finish();
    } else if (upper == "QUIT") {
        m_assignment.clear();
        finish();
    } else {
        startProgram(command);
    }
}

void frmImport::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !m_busy) {
        runCommand("QUIT");
        return;
    }
    SkinHost::keyPressEvent(event);
}

void frmImport::closeEvent(QCloseEvent* event) {
    // Contacts are being written: the dialog closes when they are done.
    if (m_busy) {
        event->ignore();
        return;
    }
    SkinDialog::closeEvent(event);
}

} // namespace mirel
