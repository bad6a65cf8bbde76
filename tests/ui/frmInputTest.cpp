#include "ui/frmInput.h"

#include "SkinFixture.h"
#include "ui/SkinButton.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QTimer>

using namespace mirel;
using namespace mirel::test;

namespace {

class frmInputTest : public SkinFixture {
protected:
    // Types text, then clicks the button with the given command while the
    // dialog runs modally.
    QByteArray run(frmInput& dlg, const QString& text, const QByteArray& command) {
        QTimer::singleShot(0, &dlg, [&] {
            dlg.txtInput()->setText(text);
            for (int i = 1; i <= dlg.state().buttonCount(); ++i)
                if (dlg.state().button(i).command.toUpper() == command)
                    dlg.button(i)->click();
        });
        dlg.exec();
        return dlg.InputResult();
    }
};

// Catches a dialog left unshaped or without the hover pass, OK not handing
// back the text in the files' code page, and Quit or Enter doing the wrong thing.
TEST_F(frmInputTest, OkEnterAndQuit) {
    {
        frmInput dlg(engine, false);
        EXPECT_FALSE(dlg.mask().contains(QPoint(0, 0))); // rounded corners cut away
        EXPECT_TRUE(dlg.mask().contains(QPoint(100, 50)));
        EXPECT_TRUE(dlg.hoverTimer().isActive());
        EXPECT_EQ(run(dlg, QString::fromUtf8("caf\u00e9 au lait"), "OK"), "caf\xe9 au lait");
        EXPECT_FALSE(dlg.isVisible());
    }
    {
        frmInput dlg(engine, false);
        EXPECT_EQ(run(dlg, "typed", "QUIT"), "");
    }
    {
        // Enter in an empty field confirms the empty text.
        frmInput dlg(engine, true);
        QTimer::singleShot(0, &dlg, [&] {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
            QKeyEvent release(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier);
            QCoreApplication::sendEvent(dlg.txtInput(), &press);
            QCoreApplication::sendEvent(dlg.txtInput(), &release);
        });
        dlg.exec();
        EXPECT_EQ(dlg.InputResult(), "");
        EXPECT_FALSE(dlg.isVisible());
    }
}

TEST_F(frmInputTest, PasswordModeShowsHashes) {
    frmInput dlg(engine, true);
    dlg.txtInput()->setText("secret");
    EXPECT_EQ(dlg.txtInput()->displayText(), "######");
}

TEST_F(frmInputTest, OtherCommandsRunAndTheDialogStaysOpen) {
    // A private copy of the theme whose override file turns the second
    // button into a program command.
    const QString theme = dir.path() + "/themes/Basic/";
    QDir().mkpath(theme);
    const QString data = testData("skins/Basic/");
    for (const QString& f : QDir(data).entryList(QDir::Files))
        QFile::copy(data + f, theme + f);
    const QString marker = dir.file("ran");
    writeAll(theme + "terminal.ini",
             "[INPUT]\r\n02=B,button.bmp,-50,60,40,20,,click,0,/usr/bin/touch " +
                 marker.toLocal8Bit() + "\r\n");
    Folders local;
    local.ProgramDir = dir.path();
    local.ThemeDir = "\\themes\\Basic\\";
    LayoutEngine localEngine(SkinContext{local, ini, nullptr, false, 0});

    // Dialogs hand programs to the main window, which asks the user first.
    QByteArray handed;
    SkinDialog::programStarter() = [&](const QByteArray& c, QWidget*) { handed = c; };
    frmInput dlg(localEngine, false);
    dlg.show();
    dlg.button(2)->click();
    SkinDialog::programStarter() = nullptr;
    EXPECT_EQ(handed, "/usr/bin/touch " + marker.toLocal8Bit());
    EXPECT_FALSE(QFile::exists(marker)) << "started without the main window's question";
    EXPECT_TRUE(dlg.isVisible());
    EXPECT_TRUE(dlg.InputResult().isEmpty());
}

TEST_F(frmInputTest, MissingSkinLeavesAPlainWorkingDialog) {
    Folders nowhere;
    nowhere.ProgramDir = dir.file("none");
    nowhere.ThemeDir = "\\gone\\";
    LayoutEngine lost(SkinContext{nowhere, ini, nullptr, false, 0});
    frmInput dlg(lost, false);
    EXPECT_EQ(dlg.state().buttonCount(), 0);
    EXPECT_TRUE(dlg.mask().isEmpty());
    QTimer::singleShot(0, &dlg, [&] {
        dlg.txtInput()->setText("x");
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Enter, Qt::NoModifier);
        QCoreApplication::sendEvent(dlg.txtInput(), &release);
    });
    dlg.exec();
    EXPECT_EQ(dlg.InputResult(), "x");
    EXPECT_TRUE(sink.shown.empty());
}

} // namespace
