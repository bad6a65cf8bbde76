#include "skin/SkinState.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

TEST(SkinStateTest, LitPictureInsertsBeforeTheExtension) {
    EXPECT_EQ(SkinState::litPicture("/t/note.bmp"), "/t/notea.bmp");
    EXPECT_EQ(SkinState::litPicture("/t/a.b.gif"), "/t/a.ba.gif");
    EXPECT_EQ(SkinState::litPicture("abc"), "abca");
    EXPECT_EQ(SkinState::litPicture(""), "a");
}

TEST(SkinStateTest, RolesAndMailButtons) {
    SkinState s;
    for (int i = 0; i < 20; ++i)
        s.addButton({});
    s.assignRole(3, 4);  // B3
    s.assignRole(13, 7); // BD: mode slot D and the done button
    s.assignRole(10, 8); // BA
    s.assignRole(-1, 9); // B: no role
    s.assignRole(9, 9);  // not a slot
    EXPECT_EQ(s.tables.prioritySlots[3], 4);
    EXPECT_EQ(s.tables.modeSlots[3], 7);
    EXPECT_EQ(s.tables.doneButton, 7);
    EXPECT_EQ(s.tables.modeSlots[0], 8);

    s.noteMailCommand("EmailReply", 5);
    s.noteMailCommand("EMAILADDRESS", 6);
    s.noteMailCommand("EMAILNEW", 10);
    s.noteMailCommand("emailreply,x", 11);
    EXPECT_EQ(s.tables.mailButtons.value("emailreply"), 5);
    EXPECT_EQ(s.tables.mailButtons.value("emailaddress"), 6);
    EXPECT_EQ(s.tables.mailButtons.size(), 2);

    EXPECT_EQ(s.button(0).keyNumber, 0);
    EXPECT_EQ(s.button(21).keyNumber, 0);
}

} // namespace
