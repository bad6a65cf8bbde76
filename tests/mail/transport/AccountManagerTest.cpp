#include "mail/transport/AccountManager.h"

#include <gtest/gtest.h>

using namespace mirel;

TEST(AccountManager, OpensOnTheLastMarkedAccount) {
    // A file edited by hand may mark several accounts or none; the window
    // shows the last marked one, as each marked row is selected in turn.
    const struct {
        QList<QByteArray> entries;
        qsizetype expected;
    } rows[] = {
        {{}, -1},
        {{"  A||||||||", "  B||||||||"}, -1},
        {{"  A||||||||", "* B||||||||"}, 1},
        {{"* A||||||||", "  B||||||||", "*C||||||||"}, 2},
        {{"", "* B"}, 1},
    };
    for (const auto& r : rows) {
        EmailAccountList list(r.entries);
        EXPECT_EQ(AccountManager(list).initialRow(), r.expected) << r.entries.join(',').constData();
    }
}

TEST(AccountManager, SelectionOutOfRangeSelectsNothing) {
    EmailAccountList list({"* A|p|u|w|1|1|s|a@x|A|"});
    AccountManager m(list);
    EXPECT_EQ(m.select(0).userName, "u");
    EXPECT_EQ(m.select(1), AccountRecord::Settings{});
    EXPECT_EQ(m.selected(), -1);
    EXPECT_FALSE(m.edit({}));
    EXPECT_EQ(m.addNew(""), -1);
    EXPECT_EQ(list.size(), 1);
}
