// Skin files read line by line, their control lines and where they place
// controls, the sounds they name and the button tables filled from them.
#include "skin/ControlLine.h"
#include "skin/Placement.h"
#include "skin/SkinLines.h"
#include "skin/SkinSound.h"
#include "skin/SkinState.h"

#include "IniFixture.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class SkinLinesTest : public IniFixture {
protected:
    SkinLines lines{ini};
    QString skin = dir.file("Mirel.skn");

    QList<QByteArray> texts(const char* section) {
        QList<QByteArray> out;
        for (const NumberedLine& l : lines.read(section, skin))
            out.append(QByteArray::number(l.keyNumber) + ":" + l.text);
        return out;
    }
};

// Catches a run that skips a gap, starts elsewhere than "01", takes "1" for
// "01", or stops at two digits, and a section looked up with its case.
TEST_F(SkinLinesTest, StopsAtTheFirstGap) {
    // S has a gap after 02, T starts at 02, U numbers without the 0, Long
    // runs to 105.
    ASSERT_TRUE(QFile::copy(testData("skins/runs.skn"), skin));
    EXPECT_EQ(texts("s"), (QList<QByteArray>{"1:B,a", "2:B,b"}));
    EXPECT_TRUE(texts("T").isEmpty());
    EXPECT_TRUE(texts("U").isEmpty());
    EXPECT_EQ(texts("Long").size(), 105);
}

// Catches an override file that adds lines or sections the skin lacks, an
// empty override value ignored, and a single line read past the override.
TEST_F(SkinLinesTest, OverrideReplacesButNeverExtends) {
    writeAll(skin, "[S]\r\n01=B,a\r\n02=B,b\r\n");
    writeAll(dir.file("Mirel.ini"), "[S]\r\n02=B,over\r\n03=B,c\r\n[T]\r\n01=B,t\r\n");
    EXPECT_EQ(texts("S"), (QList<QByteArray>{"1:B,a", "2:B,over"}));
    EXPECT_TRUE(texts("T").isEmpty());
    EXPECT_EQ(lines.line("S", 1, skin), QByteArray("B,a"));
    EXPECT_EQ(lines.line("S", 2, skin), QByteArray("B,over"));
    EXPECT_EQ(lines.line("S", 3, skin), QByteArray("B,c"));
    EXPECT_FALSE(lines.line("S", 4, skin).has_value());
    writeAll(dir.file("Mirel.ini"), "[S]\r\n01=\r\n");
    EXPECT_EQ(texts("S"), (QList<QByteArray>{"1:", "2:B,b"}));
}

// Catches a drive path not read from this system's root, the wait wish lost
// on the way to the player, and a blank name, an empty file or a folder taken
// for a sound. (Case, blanks in the theme folder, switches, overlap and fake
// files are checked at the player.)
TEST(SkinSoundTest, PlansOnlyRealFiles) {
    TempDir dir;
    const QString theme = dir.path() + QStringLiteral("/My Theme/");
    QDir().mkpath(theme + "dir.wav");
    writeAll(theme + "click.wav", QByteArray("RIFF\x04\0\0\0WAVE", 12));
    writeAll(theme + "empty.wav", {});
    QString windowsStyle = "C:" + theme + "empty.wav";
    windowsStyle.replace('/', '\\');
    EXPECT_EQ(SkinSound::soundPath(windowsStyle.toLatin1(), theme), theme + "empty.wav");

    const SoundSwitches on{true, false};
    const auto planned = SkinSound::plan("click", true, on, theme);
    ASSERT_TRUE(planned.has_value());
    EXPECT_TRUE(planned->wait);
    for (const char* none : {"  ", "empty", "dir"})
        EXPECT_FALSE(SkinSound::plan(none, false, on, theme)) << none;
}

// Catches a role slot filed in the wrong table (priority, mode, the done
// button "BD"), a non-slot accepted, a mail command matched by prefix or
// with its case, and an out-of-range button index not answered with none.
TEST(SkinStateTest, RolesAndMailButtons) {
    SkinState s;
    for (int i = 0; i < 20; ++i)
        s.addButton({});
    s.assignRole(3, 4);  // B3
    s.assignRole(13, 7); // BD: mode slot D and the done button
    s.assignRole(10, 8); // BA
    s.assignRole(9, 9);  // not a slot
    EXPECT_EQ(s.tables.prioritySlots[3], 4);
    EXPECT_EQ(s.tables.modeSlots[3], 7);
    EXPECT_EQ(s.tables.doneButton, 7);
    EXPECT_EQ(s.tables.modeSlots[0], 8);

    s.noteMailCommand("EmailReply", 5);
    s.noteMailCommand("EMAILNEW", 10);
    s.noteMailCommand("emailreply,x", 11);
    EXPECT_EQ(s.tables.mailButtons, (QMap<QByteArray, int>{{"emailreply", 5}}));
    EXPECT_EQ(s.button(21).keyNumber, 0);
}

// Catches a kind code matched loosely (case, blanks, unknown slots), a role
// slot / switch index read from the wrong character, the command cut at a
// comma or read from the wrong field, a name taken from a short line, the raw
// line not kept, a field or number past the end not answered with nothing,
// and a colour channel left unclamped.
TEST(ControlLineTest, KindRoleSwitchNameAndFields) {
    const QList<QByteArray> kinds = {
        "Unknown",        "Button",     "Picture",     "TextBox",     "MultiLine",
        "Label",          "List",       "MessageList", "MessageView", "MessageHeader",
        "AttachmentList", "ModeButton", "CheckButton", "Special",     "Animation"};
    for (const auto& r : readTable("tables/control-lines.txt")) {
        SCOPED_TRACE(r[0].constData());
        const ControlLine l = parseControlLine(r[0]);
        EXPECT_EQ(int(l.kindCode), kinds.indexOf(r[1]));
        EXPECT_EQ(l.roleSlot, r[2].toInt());
        EXPECT_EQ(l.switchIndex, r[3].toInt());
        EXPECT_EQ(l.name, r[4]);
        EXPECT_EQ(l.command(), r[5]);
        EXPECT_EQ(l.raw, r[0]);
    }
    const ControlLine l = parseControlLine("T,t,1,2,3,4,255,-7,300x,12,13,14,Sans,9");
    EXPECT_EQ(l.field(99), "");
    EXPECT_EQ(l.number(99), 0);
    // Channels clamp to 0..255 and read their leading number.
    const ControlLine::Colour back = l.colour(7);
    EXPECT_EQ(QList<int>({back.r, back.g, back.b}), QList<int>({255, 0, 255}));
}

// Catches edges counted from the wrong side, stretch and percentages applied
// to kinds that take none, and overflow on absurd numbers.
TEST(ControlLineTest, PlacementOnA1024By768Window) {
    for (const auto& r : readTable("tables/placement.txt")) {
        const QList<QByteArray> n = r[1].split(' ');
        EXPECT_EQ(placeControl(parseControlLine(r[0]), QSize(1024, 768)),
                  QRect(n[0].toInt(), n[1].toInt(), n[2].toInt(), n[3].toInt()))
            << r[0].constData();
    }
    // Picture buttons of the mail dialog carry one more field before the place.
    const ControlLine l = parseControlLine("SP,emailbut2,pic.bmp,-40,5,30,0");
    EXPECT_EQ(placeControl(l, QSize(400, 300), 4), QRect(360, 5, 30, 295));
}

} // namespace
