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
