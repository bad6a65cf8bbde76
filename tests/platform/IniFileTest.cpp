// The INI layer: documents read and edited as the profile functions do,
// and files written whole by one writer at a time.
#include "platform/IniFile.h"
#include "platform/CaseFold.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QThread>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace mirel;
using namespace mirel::test;

namespace {

struct IniFileTest : ::testing::Test {
    TempDir dir;

    static IniDocument loaded(const QString& file) {
        QByteArray bytes;
        EXPECT_TRUE(IniFile::load(file, bytes));
        return IniDocument(bytes);
    }
    // A second writer in a process of its own, as another running program
    // would be; its exit code is 0 when every write succeeded.
    static pid_t writer(const std::function<bool()>& writes) {
        const pid_t pid = ::fork();
        if (pid == 0)
            ::_exit(writes() ? 0 : 2);
        return pid;
    }
    static int exitCode(pid_t pid) {
        int status = 0;
        ::waitpid(pid, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

// Catches a path looked up with the given spelling instead of the one on
// disk (a case twin or a second file), CR LF lost, a lock file left behind,
// the permissions of a replaced file lost, and a rewrite of the same size by
// another program missed by a reader that keeps the last content.
TEST_F(IniFileTest, WritesTheFileOnDiskWhateverTheSpelling) {
    QDir(dir.path()).mkpath("mirel");
    const QString f = dir.file("mirel/calendar.ini");
    writeAll(f, "[0101]\r\nx=1\r\n");
    ::chmod(QFile::encodeName(f).constData(), 0640);
    QByteArray v;
    ASSERT_TRUE(IniFile::read(dir.path() + "\\Mirel\\Calendar.ini", "0101", "x", v));
    EXPECT_EQ(v, "1");
    ASSERT_TRUE(IniFile::write(dir.path() + "\\MIREL\\CALENDAR.INI", "0101", "y", "2"));
    EXPECT_EQ(readAll(f), QByteArray("[0101]\r\nx=1\r\ny=2\r\n"));
    EXPECT_EQ(QDir(dir.file("mirel")).entryList(QDir::Files), QStringList{"calendar.ini"});
    struct stat st {};
    ASSERT_EQ(::stat(QFile::encodeName(f).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0640u);

    ASSERT_TRUE(IniFile::read(f, "0101", "x", v));
    writeAll(f, "[0101]\r\nx=9\r\ny=2\r\n");
    ASSERT_TRUE(IniFile::read(f, "0101", "x", v));
    EXPECT_EQ(v, "9");
    // A file left alone long enough is then trusted by its times: a rewrite
    // in place, same size, same second, must still be seen.
    QThread::sleep(4);
    ASSERT_TRUE(IniFile::read(f, "0101", "x", v));
    writeAll(f, "[0101]\r\nx=8\r\ny=2\r\n");
    ASSERT_TRUE(IniFile::read(f, "0101", "x", v));
    EXPECT_EQ(v, "8");
}

// Catches two writers that read the file before either has written it back,
// so one loses the other's keys.
TEST_F(IniFileTest, TwoProcessesWritingAtOnceLoseNoKey) {
    const QString f = dir.file("incomming.ini");
    constexpr int kEach = 150;
    const auto keys = [&](const QByteArray& section, const QByteArray& prefix) {
        return writer([&] {
            for (int i = 0; i < kEach; ++i)
                if (!IniFile::write(f, section, prefix + QByteArray::number(i),
                                    "v" + QByteArray::number(i)))
                    return false;
            return true;
        });
    };
    // Two spellings of one section: both writers must land in the same one.
    const pid_t a = keys("Seen", "a"), b = keys("seen", "b");
    EXPECT_EQ(exitCode(a), 0);
    EXPECT_EQ(exitCode(b), 0);
    const IniDocument doc = loaded(f);
    EXPECT_EQ(doc.sectionNames().size(), 1);
    EXPECT_EQ(doc.keyNames("SEEN").size(), 2 * kEach);
}

// Catches a write that truncates the file before the new content is whole,
// and a lock that outlives its killed holder.
TEST_F(IniFileTest, KilledWriterLeavesOldOrNewFileNeverATornOne) {
    const QString f = dir.file("big.ini");
    constexpr int kSize = 1024 * 1024;
    ASSERT_TRUE(IniFile::write(f, "A", "before", "kept"));
    ASSERT_TRUE(IniFile::write(f, "A", "v", QByteArray(kSize, 'z')));
    for (int round = 0; round < 5; ++round) {
        const char was = loaded(f).value("A", "v")->front();
        const pid_t pid = writer([&] {
            for (char c = 'a';; c = c == 'z' ? 'a' : char(c + 1))
                IniFile::write(f, "A", "v", QByteArray(kSize, c == was ? '-' : c));
            return true;
        });
        // At least one whole write is done before the kill (slow under load).
        while (loaded(f).value("A", "v").value_or("?").front() == was)
            QThread::msleep(1);
        QThread::msleep(7 + round * 13);
        ::kill(pid, SIGKILL);
        exitCode(pid);

        const IniDocument doc = loaded(f);
        EXPECT_EQ(doc.value("A", "before"), QByteArray("kept"));
        const auto v = doc.value("A", "v");
        ASSERT_TRUE(v.has_value());
        ASSERT_EQ(v->size(), kSize);
        EXPECT_EQ(v->count(v->front()), kSize) << "value mixes two writes";
    }
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

// Catches a reader that differs from the profile functions the files were
// written for (case folding, trimming, quotes, comments, duplicate keys and
// sections), and any of the four ways of reading that disagrees with the
// others: a parsed document, a lookup without one, a whole section at once,
// and a file read twice (first searched, then answered from its key index).
TEST(IniDocument, ReadsLikeTheProfileFunctions) {
    TempDir dir;
    const QString file = dir.file("read.ini");
    for (const auto& r : readTable("tables/ini-read.txt")) {
        SCOPED_TRACE(r[0].toStdString());
        const std::optional<QByteArray> expected =
            r[4] == "<missing>" ? std::nullopt : std::optional(r[4]);
        EXPECT_EQ(IniDocument(r[1]).value(r[2], r[3]), expected);
        EXPECT_EQ(IniDocument::lookup(r[1], r[2], r[3]), expected);
        const auto all = IniDocument(r[1]).sectionValues(r[2]);
        EXPECT_EQ(all.contains(toFolded(r[3])) ? std::optional(all.value(toFolded(r[3])))
                                               : std::nullopt,
                  expected);
        writeAll(file, r[1]);
        for (int round = 0; round < 2; ++round) {
            QByteArray v;
            EXPECT_EQ(IniFile::read(file, r[2], r[3], v).status,
                      expected ? IniResult::Ok : IniResult::Missing);
            EXPECT_EQ(v, expected.value_or(QByteArray()));
        }
    }
}

// Catches an edit that rewrites, reorders or re-ends lines it did not change,
// and a batch write that differs from the same writes one by one.
TEST(IniDocument, EditsKeepUntouchedLinesByteForByte) {
    for (const auto& r : readTable("tables/ini-edit.txt")) {
        SCOPED_TRACE(r[0].toStdString());
        IniDocument doc(r[1]), batch(r[1]);
        const QList<QByteArray> op = r[2].split(' ');
        if (op[0] == "set") {
            doc.setValue(op[1], op[2], op[3]);
            EXPECT_TRUE(batch.setValues(op[1], {{"k1", "a"}, {op[2], "b"}, {op[2], op[3]}}));
            EXPECT_EQ(batch.value(op[1], "K1"), QByteArray("a"));
            EXPECT_TRUE(batch.removeKey(op[1], "k1"));
            EXPECT_EQ(batch.bytes(), r[3]);
        } else if (op[0] == "removeKey") {
            doc.removeKey(op[1], op[2]);
        } else {
            doc.removeSection(op[1]);
        }
        EXPECT_EQ(doc.bytes(), r[3]);
    }
}

// Catches comment lines listed as keys, and sections of the same name
// merged or keys listed out of file order.
TEST(IniDocument, ListsSectionsAndKeysInFileOrder) {
    IniDocument d("[One]\r\nb=1\r\na=2\r\nnovalue\r\n; c=3\r\n[Two]\r\n[one]\r\nz=9\r\n");
    EXPECT_EQ(d.sectionNames(), (QList<QByteArray>{"One", "Two", "one"}));
    EXPECT_EQ(d.keyNames("ONE"), (QList<QByteArray>{"b", "a", "novalue"}));
    EXPECT_FALSE(d.removeSection("Three"));
}

} // namespace
