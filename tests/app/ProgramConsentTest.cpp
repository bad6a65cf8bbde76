#include "app/ProgramConsent.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

// Catches a theme's program starting unasked, a "yes" carried over to
// another theme or command, a "no" that asks again on every click, and a
// "yes" forgotten by the next start.
TEST(ProgramConsent, AsksOncePerThemeAndCommand) {
    using A = ProgramConsent::Answer;
    test::TempDir dir;
    const QString file = dir.file("programs.ini");
    const ProgramConsent mine(file, "\\themes\\Mine\\"), other(file, "\\themes\\Other\\");
    EXPECT_EQ(mine.answer("xterm -e top"), A::Unknown);
    ASSERT_TRUE(mine.remember("xterm -e top", true));
    ASSERT_TRUE(mine.remember("rm -rf ~", false));
    EXPECT_EQ(mine.answer("xterm -e top"), A::Allowed);
    EXPECT_EQ(mine.answer("xterm -e top "), A::Unknown);
    EXPECT_EQ(other.answer("xterm -e top"), A::Unknown);
    EXPECT_EQ(mine.answer("rm -rf ~"), A::Refused);
    EXPECT_EQ(test::readAll(file).count('='), 1) << "a no is not kept on disk";
    EXPECT_EQ(ProgramConsent(file, "\\themes\\Mine\\").answer("xterm -e top"), A::Allowed);

    EXPECT_FALSE(ProgramConsent::needsAsking("https://example.org/", true));
    EXPECT_FALSE(ProgramConsent::needsAsking("mailto:a@example.org", true));
    EXPECT_TRUE(ProgramConsent::needsAsking("file:///bin/sh", true));
    EXPECT_TRUE(ProgramConsent::needsAsking("/usr/bin/xterm", false));
}

} // namespace
