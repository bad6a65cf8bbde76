#include "app/MailboxPoller.h"
#include "TestSupport.h"
#include "app/ShellValues.h"
#include "platform/SettingsStore.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

struct Fixture {
    test::TempDir dir;
    SettingsStore store{dir.path()};
    MailboxPoller poller{store};
    QList<QByteArray> commands;
    QList<int> clicked;
    QList<QByteArray> mailboxAtClick;

    MailboxPoller::Buttons buttons() {
        return {[this] { return int(commands.size()); },
                [this](int i) { return commands.value(i - 1); },
                [this](int i) {
                    clicked << i;
                    mailboxAtClick << voice();
                }};
    }
    void send(const QByteArray& v) { store.SaveSetting(kFamilyApp, kVoiceSection, kVoiceKey, v); }
    void exit(const QByteArray& v) { store.SaveSetting(kFamilyApp, kExitSection, kExitKey, v); }
    QByteArray voice() const { return store.GetSetting(kFamilyApp, kVoiceSection, kVoiceKey); }
};

} // namespace

// Catches a command that clicks only the first of the buttons sharing it,
// a mailbox emptied after the click (the command could not write the next
// one), a command taken before the window is ready, a loose match, a
// command that runs although the exit flag is up, a value other than "1"
// taken for exit, and a click past the end of a table the first click
// shrank. (A lower-case command that stays unread is the whole-program
// test's.)
TEST(MailboxPoller, ExitFirstThenEveryButtonSharingTheCommandOnceReady) {
    Fixture f;
    f.commands = {"NOTES", "QUIT", "NOTES", "notes"};
    f.send("NOTES");
    EXPECT_EQ(f.poller.poll(false, f.buttons()), MailboxPoller::Outcome::Idle);
    EXPECT_EQ(f.voice(), "NOTES");
    EXPECT_EQ(f.poller.poll(true, f.buttons()), MailboxPoller::Outcome::Clicked);
    EXPECT_EQ(f.clicked, (QList<int>{1, 3}));
    EXPECT_EQ(f.mailboxAtClick, (QList<QByteArray>{"", ""}));

    f.clicked.clear();
    f.send("NOTES");
    f.exit("1");
    EXPECT_EQ(f.poller.poll(true, f.buttons()), MailboxPoller::Outcome::ShutDown);
    EXPECT_TRUE(f.clicked.isEmpty());
    for (const char* v : {"0", "True", "01", ""}) {
        f.exit(v);
        EXPECT_NE(f.poller.poll(false, f.buttons()), MailboxPoller::Outcome::ShutDown) << v;
    }

    MailboxPoller::Buttons b = f.buttons();
    b.click = [&](int i) {
        f.clicked << i;
        f.commands = {"NOTES"}; // the first click switches screens
    };
    f.poller.poll(true, b);
    EXPECT_EQ(f.clicked, QList<int>{1});
}
