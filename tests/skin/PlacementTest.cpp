#include "skin/Placement.h"
#include "skin/ControlLine.h"

#include <gtest/gtest.h>
#include <ostream>

using namespace mirel;

namespace {

struct Row {
    const char* line;
    QRect expected;
};

void PrintTo(const Row& r, std::ostream* os) {
    *os << '"' << r.line << '"';
}

class PlacementTest : public ::testing::TestWithParam<Row> {};

TEST_P(PlacementTest, OnA1024By768Window) {
    const Row& r = GetParam();
    EXPECT_EQ(placeControl(parseControlLine(r.line), QSize(1024, 768)), r.expected) << r.line;
}

INSTANTIATE_TEST_SUITE_P(
    Rules, PlacementTest,
    ::testing::Values(Row{"B,b.bmp,10,20,30,40", QRect(10, 20, 30, 40)},
                      // Negative left and top count from the right and bottom edges.
                      Row{"B,b.bmp,-10,-20,5,5", QRect(1014, 748, 5, 5)},
                      // Lists and texts stretch already at 0; buttons and animations only below 0.
                      Row{"L,x,10,20,0,0", QRect(10, 20, 1014, 748)},
                      Row{"B,b.bmp,10,20,0,0", QRect(10, 20, 0, 0)},
                      Row{"A,a.gif,10,20,0,0", QRect(10, 20, 0, 0)},
                      Row{"B,b.bmp,10,20,-10,-8", QRect(10, 20, 1004, 740)},
                      Row{"T,t,100,50,-24,-50", QRect(100, 50, 900, 668)},
                      // Stretch measured from the adjusted left/top.
                      Row{"M,m,-200,-100,0,0", QRect(824, 668, 200, 100)},
                      // Percentages for the kinds that allow them, of width or height.
                      Row{"P,p.bmp,50%,0,60,40", QRect(512, 0, 60, 40)},
                      Row{"LB,l,25%,50%,50%,10%", QRect(256, 384, 512, 76)},
                      Row{"S3,c,10%,10%,1,1", QRect(102, 76, 1, 1)},
                      // A negative percentage is a negative position, then counted from the edge.
                      Row{"T,t,-10%,0,10,10", QRect(922, 0, 10, 10)},
                      // Buttons, lists and mail parts take no percentages: the number alone counts.
                      Row{"B,b.bmp,50%,10,10,10", QRect(50, 10, 10, 10)},
                      Row{"L,x,50%,10,10,10", QRect(50, 10, 10, 10)},
                      // Garbage reads as 0 (which stretches for most kinds).
                      Row{"P,p,abc,,x,y", QRect(0, 0, 1024, 768)},
                      Row{"B,b,abc,,x,y", QRect(0, 0, 0, 0)}, Row{"B", QRect(0, 0, 0, 0)},
                      // A stretch ending before the left edge leaves an empty control.
                      Row{"T,t,1000,0,-100,5", QRect(1000, 0, 0, 5)},
                      // Absurd numbers stay within sane bounds instead of overflowing.
                      Row{"T,t,99999999999999999999,5,-99999999999999999999,5",
                          QRect(1 << 20, 5, 0, 5)}));

TEST(PlacementRectTest, FirstFieldOffsetForPictureButtons) {
    const ControlLine l = parseControlLine("SP,emailbut2,pic.bmp,-40,5,30,0");
    EXPECT_EQ(placeControl(l, QSize(400, 300), 4), QRect(360, 5, 30, 295));
}

} // namespace
