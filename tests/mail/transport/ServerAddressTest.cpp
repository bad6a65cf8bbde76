#include "mail/transport/ServerAddress.h"

#include "MailStoreFixture.h"

#include <QJsonArray>
#include <gtest/gtest.h>

using namespace mirel;
using mirel::test::jsonTestData;

namespace {

// Catches a port read past its digits or out of range, and the default port
// lost; the rows are in tests/data/mail/account-rules.json.
TEST(ServerAddress, HostAndPortFromAServerField) {
    const QJsonArray rows = jsonTestData("mail/account-rules.json")["servers"].toArray();
    ASSERT_FALSE(rows.isEmpty());
    for (const QJsonValue c : rows) {
        const MailServer s = ServerAddress::parse(c[0].toString().toLatin1(), c[1].toInt());
        EXPECT_EQ(s.host, c[2].toString().toLatin1()) << c[0].toString().toStdString();
        EXPECT_EQ(s.port, c[3].toInt()) << c[0].toString().toStdString();
    }
}

// Catches the SMTP server given the POP3 log-in without the account's
// consent, or the default ports mixed up.
TEST(ServerAddress, SmtpLogsInOnlyWhenTheAccountSaysSo) {
    const QByteArray withLogin = "* W|pop.x:995|ann|pw|0|1|smtp.x:465|ann@x|Ann|";
    const QByteArray without = "* W|pop.x|ann|pw|1|0|smtp.x|ann@x|Ann|";

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
