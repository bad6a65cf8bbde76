#include "mail/transport/frmEmailAccounts.h"
#include "IniFixture.h"
#include "app/frmMain.h"
#include "mail/transport/AccountsFile.h"
#include "platform/Clock.h"
#include "settings/Folders.h"
#include "ui/LayoutEngine.h"
#include "ui/SkinButton.h"

#include <QApplication>
#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// The section as a theme writes it; the SMTP box is left out on purpose.
const QByteArray kTerminal = readAll(testData("mail/skins/emailaccounts-terminal.skn"));

const QByteArray kHome = "  Home|pop.h|hu|hp|0|1|smtp.h|h@x.org|Home Me|";
const QByteArray kWork = "* Work|pop.w:995|wu|wp|1|0|smtp.w|w@x.org|Work Me|";
const QByteArray kFresh = "  Fresh||||||||";

class frmEmailAccountsTest : public IniFixture {
protected:
    Folders folders{dir.file("prog"), QStringLiteral("\\theme\\")};
    LayoutEngine engine{SkinContext{folders, ini, nullptr, false, 0}};
    AccountsFile file{ini, folders};
    EmailAccountList accounts;
    QList<QByteArray> answers; // names given to the prompt, in order
    QStringList prompts;
    QList<QByteArray> started;

    void SetUp() override {
        QDir().mkpath(dir.file("prog/theme"));
        QDir().mkpath(dir.file("prog/Email"));
        writeAll(dir.file("prog/theme/terminal.skn"), kTerminal);
    }

    std::unique_ptr<frmEmailAccounts> open() {
        auto w = std::make_unique<frmEmailAccounts>(engine, accounts, file, sink);
        w->setNamePrompt(
            [this](const QString& prompt, const QString& title, const QString& preset) {
                prompts << prompt + '|' + title + '|' + preset;
                return answers.isEmpty() ? QByteArray() : answers.takeFirst();
            });
        w->setCommandRunner([this](const QByteArray& c) { started << c; });
        return w;
    }

    static void click(frmEmailAccounts& w, const QByteArray& command) {
        for (int i = 1; i <= w.state().buttonCount(); ++i)
            if (w.state().button(i).command.toUpper() == command.toUpper()) {
                w.button(i)->click();
                return;
            }
        ADD_FAILURE() << "no button " << command.constData();
    }

    static QStringList rows(const frmEmailAccounts& w) {
        QStringList out;
        for (int i = 0; i < w.MLmessages()->count(); ++i)
            out << w.MLmessages()->item(i)->text();
        return out;
    }
    // What the fields show, in the order of the account record.
    static QString shown(const frmEmailAccounts& w) {
        return QStringList{w.txtPOP3()->text(),
                           w.txtUser()->text(),
                           w.txtPass()->text(),
                           w.CheckHostDelete()->isChecked() ? "1" : "0",
                           w.CheckAutorize()->isChecked() ? "1" : "0",
                           w.txtSmtp()->text(),
                           w.txtEmail()->text(),
                           w.txtName()->text()}
            .join('|');
    }
};

// Catches a field shown from the wrong record position, a password shown in
// the clear, rows rewritten by merely selecting them, and an edit stored into
// another entry or in a short form.
TEST_F(frmEmailAccountsTest, OpensOnTheDefaultAccountAndEditsTheSelectedOne) {
    accounts = EmailAccountList({kHome, kWork, kFresh});
    auto w = open();

    EXPECT_EQ(rows(*w), QStringList({"  Home", "* Work", "  Fresh"}));
    EXPECT_EQ(shown(*w), "pop.w:995|wu|wp|1|0|smtp.w|w@x.org|Work Me");
    EXPECT_EQ(w->txtPass()->echoMode(), QLineEdit::Password);
    w->MLmessages()->setCurrentRow(2);
    EXPECT_EQ(shown(*w), "|||0|0|||");
    w->MLmessages()->setCurrentRow(0);
    EXPECT_EQ(shown(*w), "pop.h|hu|hp|0|1|smtp.h|h@x.org|Home Me");
    EXPECT_EQ(accounts, EmailAccountList({kHome, kWork, kFresh}));

    w->MLmessages()->setCurrentRow(2);
    w->txtEmail()->setText(QString::fromUtf8("f\u00e9@x.org"));
    EXPECT_EQ(accounts.at(2), "  Fresh||||0|0||f\xe9@x.org||");
    w->CheckAutorize()->click();
    w->txtSmtp()->setText("mail.x:587");
    EXPECT_EQ(accounts.at(2), "  Fresh||||0|1|mail.x:587|f\xe9@x.org||");
    EXPECT_EQ(accounts.at(0), kHome);
}

// Catches a cancelled prompt that still adds an account, a first account
// left without the default mark, and a new row not selected for editing.
TEST_F(frmEmailAccountsTest, NewAccountsTheFirstBecomesTheDefault) {
    auto w = open();

    answers = {"Alpha", "", "Beta"};
    click(*w, "EMAILACCOUNTNEW");
    click(*w, "EMAILACCOUNTNEW"); // cancelled: nothing added
    click(*w, "EMAILACCOUNTNEW");
    EXPECT_EQ(prompts.first(), "Enter Name for account|TORVEX Terminal|New Account");
    EXPECT_EQ(accounts, EmailAccountList({"* Alpha||||||||", "  Beta||||||||"}));
    EXPECT_EQ(rows(*w), QStringList({"* Alpha", "  Beta"}));
    EXPECT_EQ(w->MLmessages()->currentRow(), 1);

    w->txtName()->setText("Bea");
    EXPECT_EQ(accounts.at(1), "  Beta||||0|0|||Bea|");
}

// Catches a delete without asking or despite "No", the default mark passed
// on to a neighbour, commands acting on no selection, and a theme's own
// command not started.
TEST_F(frmEmailAccountsTest, DefaultAndDeleteWorkOnTheSelectedRow) {
    accounts = EmailAccountList({kHome, kWork, kFresh});
    auto w = open();

    w->MLmessages()->setCurrentRow(2);
    click(*w, "EMAILACCOUNTDEFAULT");
    EXPECT_EQ(rows(*w), QStringList({"  Home", "  Work", "* Fresh"}));

    sink.answer = false;
    click(*w, "EMAILACCOUNTDELETE");
    EXPECT_EQ(sink.asked.at(0).text, "Are you sure to delete this Account?");
    EXPECT_EQ(accounts.size(), 3);

    sink.answer = true;
    click(*w, "EMAILACCOUNTDELETE");
    EXPECT_EQ(rows(*w), QStringList({"  Home", "  Work"}));
    EXPECT_EQ(accounts.defaultIndex(), -1); // nobody inherits the mark
    EXPECT_EQ(shown(*w), "|||0|0|||");

    // With nothing selected, delete does not ask, default marks nobody and
    // typing is stored nowhere.
    click(*w, "EMAILACCOUNTDELETE");
    click(*w, "EMAILACCOUNTDEFAULT");
    w->txtName()->setText("lost");
    EXPECT_EQ(sink.asked.size(), 2u);
    EXPECT_EQ(accounts, EmailAccountList({kHome, "  " + kWork.mid(2)}));

    click(*w, "other-tool --flag");
    EXPECT_EQ(started, QList<QByteArray>{"other-tool --flag"});
}

// Catches Escape saving the edits. (OK saving them is the main window
// test's below.)
TEST_F(frmEmailAccountsTest, EscapeClosesWithoutSaving) {
    accounts = EmailAccountList({kHome});
    auto w = open();
    QTimer::singleShot(0, w.get(), [&] {
        QKeyEvent esc(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(w.get(), &esc);
    });
    w->exec();
    EXPECT_FALSE(w->saved());
    EXPECT_TRUE(file.LoadAccounts().isEmpty());
}

using frmEmailAccountsFromMain = frmEmailAccountsTest;

// Catches OK that does not write the file, and the main window keeping its
// old account list after OK (a session would run with the accounts the user
// just changed or deleted).
TEST_F(frmEmailAccountsFromMain, OkReloadsTheMainWindowsList) {
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(21, 0))};
    writeAll(dir.file("prog/theme/Mirel.skn"),
             "[DEFAULT]\r\n01=B,a.bmp,0,0,50,20,,,False,EmailAccounts\r\n[Overview]\r\n");
    store.SaveSetting(kFamilyApp, "Default", "ProgramDir", dir.file("prog").toUtf8());
    store.SaveSetting(kFamilyApp, "Default", "ThemeDir", "\\theme\\");
    file.SaveAccounts(EmailAccountList({kHome, kWork}));

    frmMain w(store, sink, clock);
    w.setSingleInstanceEnabled(false);
    w.setBundledThemeCandidates({dir.file("none")});
    ASSERT_EQ(w.Form_Load(), frmMain::StartResult::Ready);
    ASSERT_EQ(w.lstEmailAccounts().size(), 2);

    bool opened = false;
    QTimer::singleShot(0, &w, [&] {
        auto* dlg = qobject_cast<frmEmailAccounts*>(QApplication::activeModalWidget());
        ASSERT_NE(dlg, nullptr);
        opened = true;
        // In the shared list at once, before the file is written.
        dlg->txtName()->setText("Ann");
        EXPECT_EQ(AccountRecord::field(w.lstEmailAccounts().at(1), AccountRecord::SenderName),
                  "Ann");
        dlg->runCommand("OK");
    });
    w.ClickButton(1);
    EXPECT_TRUE(opened);
    EXPECT_EQ(file.LoadAccounts(), w.lstEmailAccounts());
    EXPECT_EQ(AccountRecord::field(w.lstEmailAccounts().at(1), AccountRecord::SenderName), "Ann");
    w.ShutDown();
}

} // namespace
