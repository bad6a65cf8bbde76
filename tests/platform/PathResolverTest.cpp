#include "platform/PathResolver.h"

#include "TestSupport.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

TEST(PathResolver, MatchesExistingSpellingAndKeepsGivenSpellingForMissingParts) {
    TempDir dir;
    const QString root = dir.path();
    QDir(root).mkpath("Mirel/Notes");
    writeAll(root + "/Mirel/Notes/20240101120000.not", "x");

    EXPECT_EQ(resolvePath(root + "\\mirel\\notes\\20240101120000.NOT"),
              root + "/Mirel/Notes/20240101120000.not");
    EXPECT_EQ(resolvePath(root + "\\MIREL\\Logbook\\a.log"), root + "/Mirel/Logbook/a.log");
    EXPECT_EQ(resolvePath(root + "\\nothing\\Mirel"), root + "/nothing/Mirel");
    EXPECT_EQ(resolvePath(root + "\\mirel\\"), root + "/Mirel/");
    EXPECT_EQ(resolvePath(root + "//Mirel"), root + "/Mirel");
}

TEST(PathResolver, ExactSpellingWinsOverACaseTwin) {
    TempDir dir;
    QDir(dir.path()).mkpath("email");
    QDir(dir.path()).mkpath("Email");
    EXPECT_EQ(resolvePath(dir.path() + "\\Email"), dir.path() + "/Email");
    EXPECT_EQ(resolvePath(dir.path() + "\\email"), dir.path() + "/email");
}
