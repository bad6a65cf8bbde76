#include "TestSupport.h"
#include "app/CommandTable.h"
#include "app/OpenCommand.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace mirel;

// Catches a command matched by its prefix, with blanks around it, or only
// in upper case, and one outside the table taken for a command.
TEST(CommandTable, MatchesWholeUpperCasedNames) {
    for (const auto& r : test::readTable("tables/command-names.txt")) {
        const CommandMatch m = matchCommand(r[0]);
        EXPECT_EQ(m.matched() ? m.name : QByteArray("-"), r[1]) << "[" << r[0].data() << "]";
    }
}

// Catches a quoted program split inside its quotes, or parameters that lose
// the blank after the closing quote.
TEST(OpenCommand, SplitsProgramAndParameters) {
    for (const auto& r : test::readTable("tables/open-command.txt")) {
        const OpenCommand c = OpenCommand::parse(r[0]);
        EXPECT_EQ(c.program, r[1]) << r[0].constData();
        EXPECT_EQ(c.parameters, r[2]) << r[0].constData();
    }
}

// Catches an address opened as a file, a document missed for the case of
// its name, a program not found on PATH, and a Windows path or a bare word
// handed to the desktop.
TEST(OpenCommand, ClassifiesProgramsAddressesAndDocuments) {
    test::TempDir dir;
    test::writeAll(dir.file("Readme.TXT"), "hello");
    test::writeAll(dir.file("run.sh"), "#!/bin/sh\n");
    QFile(dir.file("run.sh")).setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    const QByteArrayList targets = {"Nothing", "Program", "Address", "Document"};
    for (const auto& r : test::readTable("tables/open-targets.txt")) {
        OpenCommand c;
        c.program = r[0];
        QString resolved;
        EXPECT_EQ(int(c.classify(dir.path(), &resolved)), targets.indexOf(r[1]))
            << r[0].data() << " -> " << resolved.toStdString();
    }
}
