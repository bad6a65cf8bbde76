// The window over the bundled theme, running a real session against dovecot.
#include "mail/transport/frmEmailSendReceive.h"

#include "MailStoreFixture.h"
#include "mail/transport/SendReceiveRunner.h"
#include "servers/DovecotServer.h"
#include "settings/Folders.h"
#include "ui/LayoutEngine.h"
#include "ui/SoundPlayer.h"

#include <QListWidget>
#include <QTimer>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class frmEmailSendReceiveTest : public MailStoreFixture {
protected:
    Folders folders = [] {
        Folders f;
        f.ProgramDir = testData(QStringLiteral("../.."));
        f.ThemeDir = QStringLiteral("\\themes\\Default\\");
        return f;
    }();
    SoundPlayer sounds{folders, ini};
    LayoutEngine engine{SkinContext{folders, ini, &sounds, false, 0}};

    /// Runs the window modally; once the session is over, clicks "OK".
    QStringList runWindow(const EmailAccountList& accounts) {
        frmEmailSendReceive dlg(engine, store, clock, accounts, nullptr);
        // The test servers speak in the clear; the program folder here is the
        // source tree, so the answer is kept in the temporary folder.
        dlg.runner().setServerTrust(dir.file("servers.ini"), [](auto&, auto&) { return true; });
        auto clickOk = [&dlg] {
            for (int i = 1; i <= dlg.state().buttonCount(); ++i)
                if (dlg.state().button(i).command.toUpper() == "OK")
                    dlg.button(i)->click();
        };
        QObject::connect(&dlg.runner(), &SendReceiveRunner::over, &dlg, clickOk,
                         Qt::QueuedConnection);
        QTimer::singleShot(30000, &dlg, clickOk); // never hang the test run
        dlg.exec();
        EXPECT_TRUE(dlg.runner().isOver());
        EXPECT_TRUE(dlg.isHidden());
        QStringList rows;
        for (int i = 0; i < dlg.MLmessages()->count(); ++i)
            rows << dlg.MLmessages()->item(i)->text();
        if (!rows.isEmpty()) {
            EXPECT_EQ(dlg.MLmessages()->currentRow(), rows.size() - 1);
            const QPalette pal = dlg.MLmessages()->palette();
            EXPECT_EQ(pal.color(QPalette::Highlight), pal.color(QPalette::Base));
        }
        return rows;
    }
};

// Catches status texts not taken from the bundled theme and a window that
// does not follow the last line. (What the session stores and deletes is the
// send/receive runs'.)
TEST_F(frmEmailSendReceiveTest, ShowsEveryStepWithTheSkinTexts) {
    DovecotServer pop;
    pop.addUser("ann", "pw");
    pop.deliver("ann", "Subject: hello\r\n\r\nbody\r\n");
    ASSERT_TRUE(pop.start());
    const QByteArray account =
        "* Ann|127.0.0.1:" + QByteArray::number(pop.port()) + "|ann|pw|1|0||ann@x.org|Ann|";
    EXPECT_EQ(runWindow(EmailAccountList({account})),
              (QStringList{"DS1: Signed in: UFCA-ANN", "DS1: Connection ready",
                           "DS1: New message received (1)", "DS1: Done"}));
}

// Catches a window that waits for ever when there is no account.
TEST_F(frmEmailSendReceiveTest, AnEmptyAccountListEndsAtOnceAndOkCloses) {
    EXPECT_TRUE(runWindow({}).isEmpty());
}

} // namespace
