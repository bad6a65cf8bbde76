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

TEST(MailboxPoller, EveryButtonSharingTheCommandFiresInOneTick) {
    Fixture f;
    f.commands = {"NOTES", "QUIT", "NOTES", "notes"};
    f.send("NOTES");
    EXPECT_EQ(f.poller.poll(true, f.buttons()), MailboxPoller::Outcome::Clicked);
    EXPECT_EQ(f.clicked, (QList<int>{1, 3}));
    // Emptied before each click, so a command may write the next one.
    EXPECT_EQ(f.mailboxAtClick, (QList<QByteArray>{"", ""}));
    EXPECT_EQ(f.voice(), "");
}

TEST(MailboxPoller, UnmatchedOrEarlyCommandsStayInTheMailbox) {
    Fixture f;
    f.commands = {"QUIT"};
    f.send("quit"); // exact comparison: lower case names no button
    EXPECT_EQ(f.poller.poll(true, f.buttons()), MailboxPoller::Outcome::Unmatched);
    EXPECT_EQ(f.voice(), "quit");

    f.send("QUIT");
    EXPECT_EQ(f.poller.poll(false, f.buttons()), MailboxPoller::Outcome::Idle);
    EXPECT_TRUE(f.clicked.isEmpty());
    EXPECT_EQ(f.voice(), "QUIT");
    EXPECT_EQ(f.poller.poll(true, f.buttons()), MailboxPoller::Outcome::Clicked);
    EXPECT_EQ(f.clicked, QList<int>{1});
}

TEST(MailboxPoller, ExitIsHonouredBeforeReadyAndBeforeCommands) {
    Fixture f;
    f.commands = {"NOTES"};
    f.send("NOTES");
    f.exit("1");
    EXPECT_EQ(f.poller.poll(false, f.buttons()), MailboxPoller::Outcome::ShutDown);
    EXPECT_EQ(f.poller.poll(true, f.buttons()), MailboxPoller::Outcome::ShutDown);
    EXPECT_TRUE(f.clicked.isEmpty());

    for (const QByteArray& v :
         {QByteArray("0"), QByteArray("True"), QByteArray("01"), QByteArray()}) {
        f.exit(v);
        EXPECT_NE(f.poller.poll(false, f.buttons()), MailboxPoller::Outcome::ShutDown) << v.data();
    }
}

TEST(MailboxPoller, ClickThatChangesTheTableIsFollowedLive) {
    Fixture f;
    f.commands = {"NOTES", "X", "NOTES"};
    f.send("NOTES");
    // The first click switches screens: the later buttons go away.
    MailboxPoller::Buttons b = f.buttons();
    b.click = [&](int i) {
        f.clicked << i;
        f.commands = {"NOTES"};
    };
    f.poller.poll(true, b);
    EXPECT_EQ(f.clicked, QList<int>{1});
}
