#include "TestSupport.h"
#include "app/CommandTable.h"
#include "app/OpenCommand.h"

#include <QFile>
#include <gtest/gtest.h>
#include <random>

using namespace mirel;

TEST(CommandTable, MatchesWholeUpperCasedNames) {
    struct Row {
        const char* skin;
        Command command;
        int arg;
    };
    const Row rows[] = {
        {"quit", Command::Quit, 0},
        {"Notes", Command::Notes, 0},
        {"NOTEADD", Command::NoteAdd, 0},
        {"agendap7", Command::AgendaPriority, 7},
        {"AGENDAP0", Command::AgendaPriority, 0},
        {"MODEDAYUP", Command::AgendaStep, 0},
        {"ENDMINDOWN", Command::AgendaStep, 13},
        {"StartMinDown", Command::AgendaStep, 9},
        {"MONTHJAN", Command::Month, 1},
        {"monthdec", Command::Month, 12},
        {"EMAILSENDRECEIVE", Command::EmailSendReceive, 0},
        {"Calendar2", Command::None, 0},
        {"CALENDA", Command::None, 0},
        {" QUIT", Command::None, 0},
        {"QUIT ", Command::None, 0},
        {"AGENDAP8", Command::None, 0},
        {"", Command::None, 0},
        {"notepad.exe", Command::None, 0},
    };
    for (const Row& r : rows) {
        const CommandMatch m = matchCommand(r.skin);
        EXPECT_EQ(m.command, r.command) << r.skin;
        EXPECT_EQ(m.arg, r.arg) << r.skin;
    }
}

TEST(OpenCommand, SplitsProgramAndParameters) {
    for (const auto& r : test::readTable("tables/open-command.txt")) {
        const OpenCommand c = OpenCommand::parse(r[0]);
        EXPECT_EQ(c.program, r[1]) << r[0].constData();
        EXPECT_EQ(c.parameters, r[2]) << r[0].constData();
    }
}

TEST(OpenCommand, ClassifiesProgramsAddressesAndDocuments) {
    test::TempDir dir;
    test::writeAll(dir.file("Readme.TXT"), "hello");
    test::writeAll(dir.file("run.sh"), "#!/bin/sh\n");
    QFile(dir.file("run.sh")).setPermissions(QFile::ReadOwner | QFile::ExeOwner);

    struct Row {
        const char* program;
        OpenCommand::Target target;
    };
    const Row rows[] = {
        {"https://example.org/", OpenCommand::Target::Address},
        {"mailto:someone@example.org", OpenCommand::Target::Address},
        {"run.sh", OpenCommand::Target::Program},
        {"readme.txt", OpenCommand::Target::Document}, // case-insensitive on disk
        {"sh", OpenCommand::Target::Program},          // found on PATH
        {"C:\\nowhere\\x.exe", OpenCommand::Target::Nothing},
        {"Calendar2", OpenCommand::Target::Nothing},
        {"   ", OpenCommand::Target::Nothing},
    };
    for (const Row& r : rows) {
        OpenCommand c;
        c.program = r.program;
        QString resolved;
        EXPECT_EQ(c.classify(dir.path(), &resolved), r.target)
            << r.program << " -> " << resolved.toStdString();
    }
}

TEST(OpenCommand, ArbitraryCommandsSplitWithoutLoss) {
    // Skins are outside input: whatever a command holds, the split must not
    // crash and must keep every byte on one side or the other.
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
