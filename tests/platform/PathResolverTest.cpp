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
    for (const auto& r : readTable("tables/path-resolve.txt"))
        EXPECT_EQ(resolvePath(root + QString::fromLatin1(r[0])), root + QString::fromLatin1(r[1]))
            << r[0].constData();
}
