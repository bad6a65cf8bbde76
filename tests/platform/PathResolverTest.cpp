#include "platform/PathResolver.h"

#include "TestSupport.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

// Catches a path part matched with the given case when the disk has another,
// a missing part respelled, a trailing or doubled separator mishandled, and
// a case twin chosen over the exact spelling.
TEST(PathResolver, MatchesExistingSpellingAndKeepsGivenSpellingForMissingParts) {
    TempDir dir;
    const QString root = dir.path();
    QDir(root).mkpath("Mirel/Notes");
    QDir(root).mkpath("email");
    QDir(root).mkpath("Email");
    writeAll(root + "/Mirel/Notes/20240101120000.not", "x");
    const std::pair<const char*, const char*> rows[] = {
        {"\\mirel\\notes\\20240101120000.NOT", "/Mirel/Notes/20240101120000.not"},
        {"\\MIREL\\Logbook\\a.log", "/Mirel/Logbook/a.log"},
        {"\\nothing\\Mirel", "/nothing/Mirel"},
        {"\\mirel\\", "/Mirel/"},
        {"//Mirel", "/Mirel"},
        {"\\Email", "/Email"},
        {"\\email", "/email"}};
    for (const auto& [given, found] : rows)
        EXPECT_EQ(resolvePath(root + given), root + found) << given;
}
