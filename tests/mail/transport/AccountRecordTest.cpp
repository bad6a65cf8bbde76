#include "mail/transport/AccountRecord.h"
#include "MailStoreFixture.h"

#include <QJsonArray>

#include <QList>
#include <gtest/gtest.h>

using namespace mirel;
using mirel::test::jsonTestData;

namespace {

using R = AccountRecord;

// Catches a field read from the wrong position of a short, long or hand-made
// record, and the default mark or usability judged wrongly; the rows are in
// tests/data/mail/account-rules.json.
TEST(AccountRecord, FieldsOfEveryRecordShape) {
    const QJsonArray rows = jsonTestData("mail/account-rules.json")["records"].toArray();
    ASSERT_FALSE(rows.isEmpty());
    for (const QJsonValue c : rows) {
        const std::string what = c[0].toString().toStdString();
        const QByteArray record = c[1].toString().toLatin1();
        for (int n = 0; n < R::kFieldCount; ++n)
            EXPECT_EQ(R::field(record, n), c[2][n].toString().toLatin1()) << what << " field " << n;
        EXPECT_EQ(R::field(record, 40), "") << what;
        EXPECT_EQ(R::isDefault(record), c[3].toBool()) << what;
        EXPECT_EQ(R::isUsable(record), c[4].toBool()) << what;
    }
    EXPECT_EQ(R::name("* Work||||||||"), "Work");
    EXPECT_EQ(R::name("  Home|x|"), "Home");
    EXPECT_EQ(R::name("*"), "");
}

// Catches an edit that loses the name or marker, a record without its
// closing bar, and check boxes read from text instead of numbers.
TEST(AccountRecord, EditKeepsNameAndClosesWithABar) {
    const QByteArray fresh = R::fresh("Work", true);
    EXPECT_EQ(fresh, "* Work||||||||");
    EXPECT_EQ(R::settings(fresh), R::Settings{});

    R::Settings s{"pop.x:110", "ann", "abc", true, false, "smtp.x:587", "ann@x", "Ann"};
    const QByteArray edited = R::edited(fresh, s);
    EXPECT_EQ(edited, "* Work|pop.x:110|ann|abc|1|0|smtp.x:587|ann@x|Ann|");
    EXPECT_EQ(R::settings(edited), s);
    EXPECT_EQ(R::edited(edited, s), edited);

    // Check boxes take the field's number; an empty field is unchecked.
    EXPECT_TRUE(R::settings("* W||||2| 1|||").deleteFromServer);
    EXPECT_TRUE(R::settings("* W||||2| 1|||").smtpLogin);
    EXPECT_FALSE(R::settings("* W||||x|0|||").deleteFromServer);

    EXPECT_EQ(R::withMarker(edited, false).left(6), "  Work");
    EXPECT_EQ(R::withMarker("  Home|", true), "* Home|");
}

} // namespace
