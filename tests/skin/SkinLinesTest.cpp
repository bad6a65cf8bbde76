#include "skin/SkinLines.h"

#include "IniFixture.h"

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class SkinLinesTest : public IniFixture {
protected:
    SkinLines lines{ini};
    QString skin = dir.file("Mirel.skn");
    QString override = dir.file("Mirel.ini");

    QList<QByteArray> texts(const char* section) {
        QList<QByteArray> out;
        for (const NumberedLine& l : lines.read(section, skin))
            out.append(QByteArray::number(l.keyNumber) + ":" + l.text);
        return out;
    }
};

TEST_F(SkinLinesTest, StopsAtTheFirstGap) {
    writeAll(skin, "[S]\r\n01=B,a\r\n02=B,b\r\n04=B,d\r\n05=B,e\r\n");
    EXPECT_EQ(texts("S"), (QList<QByteArray>{"1:B,a", "2:B,b"}));
    // Section names are case-insensitive, like every INI lookup.
    EXPECT_EQ(texts("s").size(), 2);
    EXPECT_TRUE(texts("Missing").isEmpty());
    writeAll(skin, "[S]\r\n02=B,b\r\n");
    EXPECT_TRUE(texts("S").isEmpty());
    // Keys are two digits: "1" is not "01".
    writeAll(skin, "[S]\r\n1=B,a\r\n");
    EXPECT_TRUE(texts("S").isEmpty());
}

TEST_F(SkinLinesTest, OverrideReplacesButNeverExtends) {
    writeAll(skin, "[S]\r\n01=B,a\r\n02=B,b\r\n");
    writeAll(override, "[S]\r\n02=B,over\r\n03=B,only-in-override\r\n[T]\r\n01=B,t\r\n");
    EXPECT_EQ(texts("S"), (QList<QByteArray>{"1:B,a", "2:B,over"}));
    EXPECT_TRUE(texts("T").isEmpty());
    // An empty override value still replaces the line.
    writeAll(override, "[S]\r\n01=\r\n");
    EXPECT_EQ(texts("S"), (QList<QByteArray>{"1:", "2:B,b"}));
}

TEST_F(SkinLinesTest, SingleLineLooksAtTheOverrideFirst) {
    writeAll(skin, "[S]\r\n01=B,a\r\n02=B,b\r\n");
    writeAll(override, "[S]\r\n02=B,over\r\n03=B,c\r\n");
    EXPECT_EQ(lines.line("S", 1, skin), QByteArray("B,a"));
    EXPECT_EQ(lines.line("S", 2, skin), QByteArray("B,over"));
    EXPECT_EQ(lines.line("S", 3, skin), QByteArray("B,c"));
    EXPECT_FALSE(lines.line("S", 4, skin).has_value());
}

TEST_F(SkinLinesTest, ThreeDigitKeysContinueTheRun) {
    QByteArray text = "[S]\r\n";
    for (int i = 1; i <= 105; ++i)
        text +=
            QByteArray::number(i).rightJustified(2, '0') + "=B,x" + QByteArray::number(i) + "\r\n";
    writeAll(skin, text);
    const QList<NumberedLine> read = lines.read("S", skin);
    ASSERT_EQ(read.size(), 105);
    EXPECT_EQ(read.last().text, "B,x105");
}

} // namespace
