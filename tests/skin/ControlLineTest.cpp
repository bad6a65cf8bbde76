#include "skin/ControlLine.h"

#include <gtest/gtest.h>
#include <ostream>

using namespace mirel;

namespace {

struct KindRow {
    const char* line;
    ControlKind kind;
    int roleSlot;
    int switchIndex;
};

void PrintTo(const KindRow& r, std::ostream* os) {
    *os << '"' << r.line << '"';
}

class ControlKindTest : public ::testing::TestWithParam<KindRow> {};

TEST_P(ControlKindTest, KindRoleAndSwitch) {
    const KindRow& r = GetParam();
    const ControlLine l = parseControlLine(r.line);
    EXPECT_EQ(l.kindCode, r.kind) << r.line;
    EXPECT_EQ(l.roleSlot, r.roleSlot) << r.line;
    EXPECT_EQ(l.switchIndex, r.switchIndex) << r.line;
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ControlKindTest,
    ::testing::Values(
        KindRow{"B,x.bmp", ControlKind::Button, -1, -1},
        KindRow{"B0,x.bmp", ControlKind::Button, 0, -1},
        KindRow{"B7,x.bmp", ControlKind::Button, 7, -1},
        KindRow{"BA,x.bmp", ControlKind::Button, 10, -1},
        KindRow{"BD,x.bmp", ControlKind::Button, 13, -1},
        KindRow{"BF,x.bmp", ControlKind::Button, 15, -1},
        // Neither a priority nor a mode slot: not a button kind at all.
        KindRow{"B8,x", ControlKind::Unknown, -1, -1},
        KindRow{"BG,x", ControlKind::Unknown, -1, -1},
        // Kinds are matched exactly, upper case only.
        KindRow{"b,x", ControlKind::Unknown, -1, -1}, KindRow{"Lb,x", ControlKind::Unknown, -1, -1},
        KindRow{" B,x", ControlKind::Unknown, -1, -1}, KindRow{"P,x", ControlKind::Picture, -1, -1},
        KindRow{"T,x", ControlKind::TextBox, -1, -1},
        KindRow{"M,x", ControlKind::MultiLine, -1, -1}, KindRow{"LB,x", ControlKind::Label, -1, -1},
        KindRow{"L,x", ControlKind::List, -1, -1},
        KindRow{"ML,x", ControlKind::MessageList, -1, -1},
        KindRow{"MO,x", ControlKind::MessageView, -1, -1},
        KindRow{"MA,x", ControlKind::AttachmentList, -1, -1},
        KindRow{"S0,x", ControlKind::ModeButton, -1, 0},
        KindRow{"S1,x", ControlKind::ModeButton, -1, 1},
        KindRow{"S2,x", ControlKind::CheckButton, -1, 0},
        KindRow{"S8,x", ControlKind::CheckButton, -1, 6},
        KindRow{"S9,x", ControlKind::Unknown, -1, -1},
        KindRow{"SP,emailedit", ControlKind::Special, -1, -1},
        KindRow{"A,x.gif", ControlKind::Animation, -1, -1},
        KindRow{"", ControlKind::Unknown, -1, -1}, KindRow{",,,,", ControlKind::Unknown, -1, -1}));

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

TEST(ControlLineTest, SkinBooleans) {
    // Words and numbers; anything else is no answer, and the caller's fallback.
    struct Row {
        const char* text;
        std::optional<bool> value;
    };
    const Row rows[] = {
        {"True", true},       {"TRUE", true},
        {" false ", false},   {"1", true},
        {"0", false},         {"-1", true},
        {"0.0", false},       {"2.5", true},
        {"", std::nullopt},   {"maybe", std::nullopt},
        {"1x", std::nullopt},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(parseSkinBool(r.text), r.value) << r.text;
        for (bool fallback : {false, true})
            EXPECT_EQ(parseSkinBool(r.text, fallback), r.value.value_or(fallback)) << r.text;
    }
}

} // namespace
