#include "mail/transport/AccountRecord.h"

#include <QList>
#include <gtest/gtest.h>

using namespace mirel;

namespace {

using R = AccountRecord;

TEST(AccountRecord, FieldsOfEveryRecordShape) {
    struct Case {
        const char* what;
        QByteArray record;
        QList<QByteArray> fields; // 0..8
        bool isDefault, usable;
    } cases[] = {
        {"fresh default",
         "* Work||||||||",
         {"* Work", "", "", "", "", "", "", "", ""},
         true,
         false},
        {"edited, closing bar",
         "  Home|pop.x.org:995|ann|abc|1|0|smtp.x.org|ann@x.org|Ann Lee|",
         {"  Home", "pop.x.org:995", "ann", "abc", "1", "0", "smtp.x.org", "ann@x.org", "Ann Lee"},
         false,
         true},
        {"edited without closing bar",
         "* A|p|u|w|0|1|s|a@b|N",
         {"* A", "p", "u", "w", "0", "1", "s", "a@b", "N"},
         true,
         true},
        {"three fields",
         "* Short|pop|user",
         {"* Short", "pop", "user", "", "", "", "", "", ""},
         true,
         false},
        {"twenty fields",
         "  L|1|2|3|4|5|6|7|8|9|10|11|12|13|14|15|16|17|18|19",
         {"  L", "1", "2", "3", "4", "5", "6", "7", "8"},
         false,
         true},
        {"empty", "", {"", "", "", "", "", "", "", "", ""}, false, false},
        {"only an address",
         "  X|||||||a@b|",
         {"  X", "", "", "", "", "", "", "a@b", ""},
         false,
         false},
        // A bar typed into the name pushes every later field one place on.
        {"bar inside the name",
         "  A|B|pop|u|p|0|0|smtp|a@b|Nm|",
         {"  A", "B", "pop", "u", "p", "0", "0", "smtp", "a@b"},
         false,
         true},
    };
    for (const Case& c : cases) {
        for (int n = 0; n < R::kFieldCount; ++n)
            EXPECT_EQ(R::field(c.record, n), c.fields[n]) << c.what << " field " << n;
        EXPECT_EQ(R::field(c.record, 40), "") << c.what;
        EXPECT_EQ(R::isDefault(c.record), c.isDefault) << c.what;
        EXPECT_EQ(R::isUsable(c.record), c.usable) << c.what;
    }
    EXPECT_EQ(R::name("* Work||||||||"), "Work");
    EXPECT_EQ(R::name("  Home|x|"), "Home");
    EXPECT_EQ(R::name("*"), "");
}

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
