#include "OrganiserFixture.h"

#include "organiser/NotesBook.h"
#include "organiser/TextFile.h"
#include "platform/IniDocument.h"
#include "settings/TripletCodec.h"

#include <QDir>

using namespace mirel;
using namespace mirel::test;

namespace {

using DataFoldersTest = OrganiserFixture;

TEST_F(DataFoldersTest, FirstStartMakesFoldersAndDefaultsOnly) {
    for (const char* d : {"Addressbook", "Logbook", "Notes", "Todo"})
        EXPECT_TRUE(QFileInfo(data(d)).isDir()) << d;
    const IniDocument dirs(readAll(data("directories.ini")));
    EXPECT_EQ(dirs.value("MIREL", "Notes"), (folders.ProgramDir + "/Mirel/Notes").toUtf8());
    EXPECT_EQ(dirs.keyNames("MIREL"), (QList<QByteArray>{"Logbook", "Notes", "Todo"}));
    EXPECT_EQ(QDir(folders.ProgramDir + "/Mirel").entryList(QDir::Files),
              QStringList{"directories.ini"});
}

TEST_F(DataFoldersTest, PresentKeyIsNeverChanged) {
    writeAll(data("directories.ini"), "[MIREL]\r\nNotes=/elsewhere\r\n");
    DataFolders(ctx).bootstrap();
    const QByteArray after = readAll(data("directories.ini"));
    EXPECT_TRUE(after.startsWith("[MIREL]\r\nNotes=/elsewhere\r\n"));
    // Fault: a named folder that does not exist (say a Windows path) was
    // swapped for the default one, so notes went where nobody chose.
    EXPECT_EQ(ctx.itemFolder("Notes"), "/elsewhere");
    OrganiserState st;
    EditBoxes boxes{.title = "kept", .body = "text"};
    EXPECT_FALSE(NotesBook(ctx).save(st, boxes));
    ASSERT_EQ(sink.shown.size(), 1u);
    EXPECT_TRUE(sink.shown[0].text.contains("/elsewhere"));
    EXPECT_TRUE(QDir(data("Notes")).isEmpty());
}

TEST_F(DataFoldersTest, ConvertsEveryKindOfTheOldStoreOnce) {
    // Every section of the old single store: contacts (one empty, one short),
    // agenda, calendar days, log, notes and tasks as digit triplets; one
    // foreign section that stays.
    writeAll(folders.ProgramDir + "/mirel-data.ini", readAll(testData("organiser/old-store.ini")));

    DataFolders(ctx).bootstrap();

    // Contacts: item 1 empty -> no 0.dat; fields 3,1,2,4..16 then encoded 17.
    EXPECT_FALSE(QFile::exists(data("Addressbook/0.dat")));
    const auto lines = TextFile::readLines(data("Addressbook/1.dat"));
    ASSERT_TRUE(lines);
    ASSERT_EQ(lines->size(), 17);
    EXPECT_EQ((*lines)[0], "f3");
    EXPECT_EQ((*lines)[1], "f1");
    EXPECT_EQ((*lines)[2], "f2");
    EXPECT_EQ((*lines)[15], "f16");
    EXPECT_EQ(decodeTriplets((*lines)[16]), "f17\r\nnote");
    EXPECT_EQ(TextFile::readLines(data("Addressbook/2.dat"))->size(), 17); // padded

    const IniDocument agenda(readAll(data("agenda.ini")));
    EXPECT_EQ(agenda.value("AGENDA", "ID"), "3");
    EXPECT_EQ(agenda.value("AGENDA", "2"), ""); // absent key copied empty
    EXPECT_EQ(agenda.value("AGENDA", "3"), "def");

    const IniDocument cal(readAll(data("Calendar.ini")));
    EXPECT_EQ(cal.value("CALENDAR", "0229"), "leap");
    EXPECT_EQ(cal.value("CALENDAR", "1231"), "eve");
    EXPECT_FALSE(cal.value("CALENDAR", "0230"));
    EXPECT_FALSE(cal.value("CALENDAR", "0101"));

    EXPECT_EQ(readAll(data("Logbook/20050101000000.log")), "first\r\nline\r\n");
    EXPECT_EQ(readAll(data("Logbook/20061116164512.log")), "second\r\n");

    // Notes sorted: "" (the empty item) at 0, "Alpha" at 1, "beta" at 2.
    EXPECT_EQ(readAll(data("Notes/20020101010101.not")), "Alpha\r\na text\r\n");
    EXPECT_EQ(readAll(data("Notes/20020101010102.not")), "beta\r\nb text\r\n");
    EXPECT_EQ(readAll(data("Todo/20020101010100.tod")), "0\r\nbuy milk\r\n");

    EXPECT_EQ(readAll(folders.ProgramDir + "/mirel-data.ini"), "[KEEP]\r\nx=1\r\n");

    // A second start converts nothing again and changes nothing.
    QFile::remove(data("Notes/20020101010101.not"));
    DataFolders(ctx).bootstrap();
    EXPECT_FALSE(QFile::exists(data("Notes/20020101010101.not")));
}

TEST_F(DataFoldersTest, GarbageCountsInTheOldStoreStayBounded) {
    writeAll(folders.ProgramDir + "/mirel-data.ini",
             "[AGENDA]\r\nID=2000000000\r\n1=a\r\n[NOTES]\r\nID=x\r\n1=065\r\n");
    DataFolders(ctx).bootstrap();
    const IniDocument agenda(readAll(data("agenda.ini")));
    EXPECT_EQ(agenda.keyNames("AGENDA").size(), 2);
    EXPECT_TRUE(QDir(data("Notes")).isEmpty());
}

} // namespace
