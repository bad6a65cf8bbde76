#include "mail/transport/ServerAddress.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

TEST(ServerAddress, HostAndPortFromAServerField) {
    struct Case {
        const char* field;
        int defaultPort;
        const char* host;
        int port;
    } cases[] = {
        {"pop.example.org", 110, "pop.example.org", 110},
        {"pop.example.org:995", 110, "pop.example.org", 995},
        {"smtp.example.org", 25, "smtp.example.org", 25},
        {"smtp.example.org:587", 25, "smtp.example.org", 587},
        {"host:587x", 25, "host", 587},
        {"host:", 25, "host", 0}, // an empty port fails at connect, not here
        {"host:abc", 25, "host", 0},
        {"host:99999", 25, "host", 0},
        {"host:1:2", 25, "host", 1},
        {"", 110, "", 110},
    };
    for (const Case& c : cases) {
        const MailServer s = ServerAddress::parse(c.field, c.defaultPort);
        EXPECT_EQ(s.host, c.host) << c.field;
        EXPECT_EQ(s.port, c.port) << c.field;
    }
}

TEST(ServerAddress, SmtpLogsInOnlyWhenTheAccountSaysSo) {
    const QByteArray withLogin = "* W|pop.x:995|ann|pw|0|1|smtp.x:465|ann@x|Ann|";
    const QByteArray without = "* W|pop.x|ann|pw|1|0|smtp.x|ann@x|Ann|";

    const MailServer pop = ServerAddress::pop3For(withLogin);
    EXPECT_EQ(pop.host, "pop.x");
    EXPECT_EQ(pop.port, 995);
    EXPECT_EQ(pop.userName, "ann");
    EXPECT_EQ(pop.password, "pw");

    const MailServer smtp = ServerAddress::smtpFor(withLogin);
    EXPECT_EQ(smtp.port, 465);
    EXPECT_EQ(smtp.userName, "ann");
    EXPECT_EQ(smtp.password, "pw");

    const MailServer open = ServerAddress::smtpFor(without);
    EXPECT_EQ(open.port, 25);
    EXPECT_TRUE(open.userName.isEmpty());
    EXPECT_TRUE(open.password.isEmpty());
    EXPECT_EQ(ServerAddress::pop3For(without).port, 110);
}

} // namespace
