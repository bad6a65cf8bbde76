#include "TestSupport.h"
#include "app/CommandTable.h"
#include "app/OpenCommand.h"

#include <QFile>
#include <gtest/gtest.h>
#include <random>

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

// Skins are outside input: whatever a command holds, the split must not
// crash and must keep every byte on one side or the other.
TEST(OpenCommand, ArbitraryCommandsSplitWithoutLoss) {
    std::mt19937 rng(1234);
    const QByteArray alphabet("ab \"\\:/-\x01\xe9\xff");
    for (int n = 0; n < 20000; ++n) {
        QByteArray c;
        const int len = int(rng() % 12);
        for (int i = 0; i < len; ++i)
            c += alphabet[int(rng() % alphabet.size())];
        const OpenCommand o = OpenCommand::parse(c);
        if (c.startsWith('"')) {
            const bool closed = c.indexOf('"', 1) > 0;
            EXPECT_EQ('"' + o.program + (closed ? "\"" : "") + o.parameters, c);
        } else if (o.parameters.isEmpty() && !c.mid(1).contains(' ')) {
            EXPECT_EQ(o.program, c);
        } else {
            EXPECT_EQ(o.program + ' ' + o.parameters, c);
            EXPECT_FALSE(o.program.mid(1).contains(' '));
        }
    }
}
