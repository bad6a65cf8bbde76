#include "ui/frmInput.h"

#include "SkinFixture.h"
#include "ui/SkinButton.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QTimer>

using namespace mirel;
using namespace mirel::test;

namespace {

class frmInputTest : public SkinFixture {
protected:
    // Types text, then clicks the button with the given command (or presses
    // Enter for none) while the dialog runs modally.
    QByteArray run(frmInput& dlg, const QString& text, const QByteArray& command) {
        QTimer::singleShot(0, &dlg, [&] {
            dlg.txtInput()->setText(text);
            for (int i = 1; i <= dlg.state().buttonCount(); ++i)
                if (dlg.state().button(i).command.toUpper() == command)
                    dlg.button(i)->click();
            if (command.isEmpty()) {
                QKeyEvent release(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier);
                QCoreApplication::sendEvent(dlg.txtInput(), &release);
            }
        });
        dlg.exec();
        EXPECT_FALSE(dlg.isVisible());
        return dlg.InputResult();
    }
};

// Catches a dialog left unshaped or without the hover pass, OK not handing
// back the text in the files' code page, Quit or Enter doing the wrong
// thing, a password shown as typed, and a program command of a dialog
// button started without the main window's question, or closing the dialog.
TEST_F(frmInputTest, OkEnterQuitAndOtherCommands) {
    {
        frmInput dlg(engine, false);
        EXPECT_FALSE(dlg.mask().contains(QPoint(0, 0))); // rounded corners cut away
        EXPECT_TRUE(dlg.mask().contains(QPoint(100, 50)));
        EXPECT_TRUE(dlg.hoverTimer().isActive());
        EXPECT_EQ(run(dlg, QString::fromUtf8("caf\u00e9 au lait"), "OK"), "caf\xe9 au lait");
    }
    {
        // Another command goes to the main window's starter; the dialog stays.
        QByteArray handed;
        SkinDialog::programStarter() = [&](const QByteArray& c, QWidget*) { handed = c; };
        frmInput dlg(engine, false);
        dlg.show();
        dlg.button(3)->click();
        SkinDialog::programStarter() = nullptr;
        EXPECT_EQ(handed, "/usr/bin/true --from-input");
        EXPECT_TRUE(dlg.isVisible());
        EXPECT_TRUE(dlg.InputResult().isEmpty());
        EXPECT_EQ(run(dlg, "typed", "QUIT"), "");
    }
    {
        frmInput dlg(engine, true);
        dlg.txtInput()->setText("secret");
        EXPECT_EQ(dlg.txtInput()->displayText(), "######");
        EXPECT_EQ(run(dlg, "", ""), ""); // Enter in an empty field confirms the empty text
    }
}

} // namespace
