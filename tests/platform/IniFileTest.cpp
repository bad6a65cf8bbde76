#include "platform/IniFile.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QThread>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace mirel;
using namespace mirel::test;

namespace {

struct IniFileTest : ::testing::Test {
    TempDir dir;
};

TEST_F(IniFileTest, MissingFileIsMissingNotAnError) {
    QByteArray v = "stale";
    EXPECT_EQ(IniFile::read(dir.file("none.ini"), "A", "k", v).status, IniResult::Missing);
    EXPECT_TRUE(v.isEmpty());
    EXPECT_EQ(IniFile::removeKey(dir.file("none.ini"), "A", "k").status, IniResult::Missing);
    EXPECT_FALSE(QFile::exists(dir.file("none.ini")));
}

TEST_F(IniFileTest, WriteCreatesFileWithCrLfAndLeavesNoLockBehind) {
    ASSERT_TRUE(IniFile::write(dir.file("a.ini"), "S", "k", "v"));
    ASSERT_TRUE(IniFile::write(dir.file("a.ini"), "S", "j", "w"));
    EXPECT_EQ(readAll(dir.file("a.ini")), QByteArray("[S]\r\nk=v\r\nj=w\r\n"));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"a.ini"});
}

TEST_F(IniFileTest, FolderMissingFolderAndUnreadableFileAreErrors) {
    QDir(dir.path()).mkdir("sub.ini");
    QByteArray v;
    const IniResult r = IniFile::read(dir.file("sub.ini"), "A", "k", v);
    EXPECT_EQ(r.status, IniResult::IoError);
    EXPECT_TRUE(r.error.contains("sub.ini"));
    EXPECT_EQ(IniFile::write(dir.file("sub.ini"), "A", "k", "v").status, IniResult::IoError);
    EXPECT_EQ(IniFile::write(dir.file("no/such/folder/x.ini"), "A", "k", "v").status,
              IniResult::IoError);

    if (getuid() != 0) { // root reads everything
        writeAll(dir.file("locked.ini"), "[A]\r\nk=v\r\n");
        QFile::setPermissions(dir.file("locked.ini"), {});
        EXPECT_EQ(IniFile::read(dir.file("locked.ini"), "A", "k", v).status, IniResult::IoError);
    }
}

TEST_F(IniFileTest, ReplaceKeepsPermissionsOfTheFile) {
    const QString f = dir.file("accounts.ini");
    ASSERT_TRUE(IniFile::write(f, "A", "k", "v"));
    ::chmod(QFile::encodeName(f).constData(), 0600);
    ASSERT_TRUE(IniFile::write(f, "A", "k", "w"));
    struct stat st {};
    ASSERT_EQ(::stat(QFile::encodeName(f).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
}

TEST_F(IniFileTest, PathsResolveWithoutRegardToCase) {
    QDir(dir.path()).mkpath("mirel");
    writeAll(dir.file("mirel/calendar.ini"), "[0101]\r\nx=1\r\n");
    QByteArray v;
    ASSERT_TRUE(IniFile::read(dir.path() + "\\Mirel\\Calendar.ini", "0101", "x", v));
    EXPECT_EQ(v, "1");
    ASSERT_TRUE(IniFile::write(dir.path() + "\\MIREL\\CALENDAR.INI", "0101", "y", "2"));
    EXPECT_EQ(readAll(dir.file("mirel/calendar.ini")), QByteArray("[0101]\r\nx=1\r\ny=2\r\n"));
    EXPECT_EQ(QDir(dir.file("mirel")).entryList(QDir::Files), QStringList{"calendar.ini"});
}

TEST_F(IniFileTest, TwoProcessesWritingAtOnceLoseNoKey) {
    const QString f = dir.file("incomming.ini");
    constexpr int kEach = 150;
    QProcess* a = startHelper({"write-keys", f, "Seen", "a", QString::number(kEach)});
    QProcess* b = startHelper({"write-keys", f, "seen", "b", QString::number(kEach)});
    ASSERT_TRUE(a->waitForFinished(120000));
    ASSERT_TRUE(b->waitForFinished(120000));
    EXPECT_EQ(a->exitCode(), 0);
    EXPECT_EQ(b->exitCode(), 0);
    delete a;
    delete b;
    QByteArray bytes;
    ASSERT_TRUE(IniFile::load(f, bytes));
    const IniDocument doc(bytes);
    EXPECT_EQ(doc.keyNames("SEEN").size(), 2 * kEach);
    for (int i = 0; i < kEach; ++i) {
        EXPECT_EQ(doc.value("Seen", "a" + QByteArray::number(i)), "v" + QByteArray::number(i));
        EXPECT_EQ(doc.value("Seen", "b" + QByteArray::number(i)), "v" + QByteArray::number(i));
    }
    EXPECT_EQ(doc.sectionNames().size(), 1);
}

TEST_F(IniFileTest, KilledWriterLeavesOldOrNewFileNeverATornOne) {
    const QString f = dir.file("big.ini");
    constexpr int kSize = 1024 * 1024;
    ASSERT_TRUE(IniFile::write(f, "A", "before", "kept"));
    for (int round = 0; round < 5; ++round) {
        QProcess* p = startHelper({"rewrite", f, "A", "v", QString::number(kSize)});
        // At least one whole write is done before the kill (slow under load).
        ASSERT_TRUE(p->waitForReadyRead(120000));
        QThread::msleep(7 + round * 13);
        p->kill();
        p->waitForFinished();
        delete p;

        QByteArray bytes;
        ASSERT_TRUE(IniFile::load(f, bytes));
        const IniDocument doc(bytes);
        EXPECT_EQ(doc.value("A", "before"), QByteArray("kept"));
        const auto v = doc.value("A", "v");
        ASSERT_TRUE(v.has_value());
        ASSERT_EQ(v->size(), kSize);
        EXPECT_EQ(v->count(v->front()), kSize) << "value mixes two writes";
        EXPECT_TRUE(bytes.endsWith("\r\n"));
    }
    // A writer killed while holding the lock does not block the next one.
    EXPECT_TRUE(IniFile::write(f, "A", "after", "ok"));
}

// Catches typed text (a --send command, a folder name, a skin value) that
// smuggles a new key or section into a shared file: each write is refused
// and the file stays byte for byte as it was.
TEST_F(IniFileTest, RefusesTextThatWouldAddKeysOrSections) {
    const QString file = dir.file("shared.ini");
    ASSERT_TRUE(IniFile::write(file, "Voice", "Mirel", "NOTES"));
    const QByteArray before = readAll(file);
    for (const auto& c : readTable("tables/ini-injection.txt")) {
        SCOPED_TRACE((c[0] + " / " + c[1] + " / " + c[2]).toStdString());
        EXPECT_EQ(IniFile::write(file, c[0], c[1], c[2]).status, IniResult::IoError);
        IniDocument doc(before);
        EXPECT_FALSE(doc.setValues(c[0], {{"ok", "1"}, {c[1], c[2]}}));
        EXPECT_EQ(doc.bytes(), before);
    }
    EXPECT_EQ(readAll(file), before);
}

} // namespace
