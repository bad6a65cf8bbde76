#include "skin/ControlLine.h"
#include "TestSupport.h"
#include "skin/Placement.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

// Catches a kind code matched loosely (case, blanks, unknown slots) or a
// role slot / switch index read from the wrong character.
TEST(ControlLineTest, KindRoleAndSwitch) {
    const QList<QByteArray> kinds = {
        "Unknown",        "Button",     "Picture",     "TextBox",     "MultiLine",
        "Label",          "List",       "MessageList", "MessageView", "MessageHeader",
        "AttachmentList", "ModeButton", "CheckButton", "Special",     "Animation"};
    for (const auto& r : test::readTable("tables/control-kinds.txt")) {
        const ControlLine l = parseControlLine(r[0]);
        EXPECT_EQ(int(l.kindCode), kinds.indexOf(r[1])) << r[0].constData();
        EXPECT_EQ(l.roleSlot, r[2].toInt()) << r[0].constData();
        EXPECT_EQ(l.switchIndex, r[3].toInt()) << r[0].constData();
    }
}

// Catches edges counted from the wrong side, stretch and percentages applied
// to kinds that take none, and overflow on absurd numbers.
TEST(ControlLineTest, PlacementOnA1024By768Window) {
    for (const auto& r : test::readTable("tables/placement.txt")) {
        const QList<QByteArray> n = r[1].split(' ');
        EXPECT_EQ(placeControl(parseControlLine(r[0]), QSize(1024, 768)),
                  QRect(n[0].toInt(), n[1].toInt(), n[2].toInt(), n[3].toInt()))
            << r[0].constData();
    }
    // Picture buttons of the mail dialog carry one more field before the place.
    const ControlLine l = parseControlLine("SP,emailbut2,pic.bmp,-40,5,30,0");
    EXPECT_EQ(placeControl(l, QSize(400, 300), 4), QRect(360, 5, 30, 295));
}

TEST(ControlLineTest, FieldsAndCommand) {
    struct Row {
        const char* line;
        const char* name;
        const char* command;
    };
    const Row rows[] = {
        {"B,note.bmp,1,2,3,4,hover,click,0,NOTES", "note.bmp", "NOTES"},
        // Everything after the ninth comma is the command, commas included.
        {"B,n.bmp,1,2,3,4,,,1,\"/opt/x y/run\" -a,b,,c", "n.bmp", "\"/opt/x y/run\" -a,b,,c"},
        {"B,n.bmp,1,2,3,4,,,0,", "n.bmp", ""},
        {"B,n.bmp,1,2,3,4,,,0", "n.bmp", ""},
        {"B", "", ""},
    };
    for (const Row& r : rows) {
        const ControlLine l = parseControlLine(r.line);
        EXPECT_EQ(l.name, r.name) << r.line;
        EXPECT_EQ(l.command(), r.command) << r.line;
        EXPECT_EQ(l.raw, r.line);
    }
    const ControlLine l = parseControlLine("T,t,1,2,3,4,255,-7,300x,12,13,14,Sans,9");
    EXPECT_EQ(l.number(3), 1);
    EXPECT_EQ(l.field(13), "Sans");
    EXPECT_EQ(l.field(99), "");
    EXPECT_EQ(l.number(99), 0);
    // Channels clamp to 0..255 and read their leading number.
    const ControlLine::Colour back = l.colour(7);
    EXPECT_EQ(back.r, 255);
    EXPECT_EQ(back.g, 0);
    EXPECT_EQ(back.b, 255);
}

} // namespace
