#include "OrganiserFixture.h"

#include "organiser/NotesBook.h"
#include "platform/IniDocument.h"

#include <QDir>
#include <QDirIterator>

using namespace mirel;
using namespace mirel::test;

namespace {

using DataFoldersTest = OrganiserFixture;

// Every file under a folder, by its path inside it.
QStringList filesUnder(const QString& root) {
    QStringList out;
    QDirIterator it(root, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        out.append(QDir(root).relativeFilePath(it.next()));
    out.sort();
    return out;
}

// Catches a first start that writes more than the folder list, a folder
// list with the wrong keys, a present key changed, and a named folder that
// does not exist (say a Windows path) swapped for the default one, so notes
// went where nobody chose.
TEST_F(DataFoldersTest, FirstStartMakesFoldersAndKeepsAPresentKey) {
    const IniDocument dirs(readAll(data("directories.ini")));
    EXPECT_EQ(dirs.keyNames("MIREL"), (QList<QByteArray>{"Logbook", "Notes", "Todo"}));
    EXPECT_EQ(filesUnder(data("")), QStringList{"directories.ini"});

    writeAll(data("directories.ini"), "[MIREL]\r\nNotes=/elsewhere\r\n");
    DataFolders(ctx).bootstrap();
    EXPECT_TRUE(readAll(data("directories.ini")).startsWith("[MIREL]\r\nNotes=/elsewhere\r\n"));
    EXPECT_EQ(ctx.itemFolder("Notes"), "/elsewhere");
    OrganiserState st;
    EditBoxes boxes{.title = "kept", .body = "text"};
    EXPECT_FALSE(NotesBook(ctx).save(st, boxes));
    ASSERT_EQ(sink.shown.size(), 1u);
    EXPECT_TRUE(sink.shown[0].text.contains("/elsewhere"));
    EXPECT_TRUE(QDir(data("Notes")).isEmpty());
}

// Catches any kind of the old single store converted wrongly: contacts (one
// empty, one short) with their odd field order, agenda keys, calendar days
// that do not exist, log stamps, notes and tasks in their order; a foreign
// section lost; and a second start converting again.
TEST_F(DataFoldersTest, ConvertsEveryKindOfTheOldStoreOnce) {
    writeAll(folders.ProgramDir + "/mirel-data.ini", readAll(testData("organiser/old-store.ini")));
    DataFolders(ctx).bootstrap();

    const QString expected = testData("organiser/converted");
    QStringList made = filesUnder(data(""));
    made.removeOne("directories.ini");
    EXPECT_EQ(made, filesUnder(expected));
    for (const QString& f : filesUnder(expected))
        EXPECT_EQ(readAll(data(f)), readAll(expected + "/" + f)) << f.toStdString();
    EXPECT_EQ(readAll(folders.ProgramDir + "/mirel-data.ini"), "[KEEP]\r\nx=1\r\n");

    QFile::remove(data("Notes/20020101010101.not"));
    DataFolders(ctx).bootstrap();
    EXPECT_FALSE(QFile::exists(data("Notes/20020101010101.not")));
}

// Catches a count of two thousand million, or one that is no number, taken
// at its word (a hang or a store of empty items).
TEST_F(DataFoldersTest, GarbageCountsInTheOldStoreStayBounded) {
    writeAll(folders.ProgramDir + "/mirel-data.ini",
             "[AGENDA]\r\nID=2000000000\r\n1=a\r\n[NOTES]\r\nID=x\r\n1=065\r\n");
    DataFolders(ctx).bootstrap();
    EXPECT_EQ(IniDocument(readAll(data("agenda.ini"))).keyNames("AGENDA").size(), 2);
    EXPECT_TRUE(QDir(data("Notes")).isEmpty());
}

} // namespace
