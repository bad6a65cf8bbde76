#include "platform/IniFile.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

// Catches a kept content or its key index answering differently from a
// fresh read: a rewrite in place of the same size by another program must
// be seen, and the index must keep the first section and first key of a
// name, a key without "=" hiding later ones, as a plain lookup does.
TEST(IniReadCache, RepeatedReadsAnswerAsAFreshRead) {
    TempDir dir;
    const QString f = dir.file("seen.ini");
    const QByteArray doc =
        "[S]\r\nk=1\r\nK=2\r\nbare\r\nbare=3\r\n[s]\r\nlater=4\r\n[T]\r\nx = 'q'\r\n";
    writeAll(f, doc);
    const struct {
        const char *section, *key, *value; // value nullptr: missing
    } cases[] = {{"s", "K", "1"}, {"S", "bare", nullptr}, {"S", "later", nullptr},
                 {"t", "X", "q"}, {"T", "none", nullptr}, {"U", "k", nullptr}};
    for (int round = 0; round < 3; ++round) // fresh, kept, indexed
        for (const auto& c : cases) {
            QByteArray v;
            const IniResult r = IniFile::read(f, c.section, c.key, v);
            EXPECT_EQ(r.status, c.value ? IniResult::Ok : IniResult::Missing)
                << round << c.section << c.key;
            EXPECT_EQ(v, QByteArray(c.value));
        }
    QByteArray changed = doc;
    changed.replace("k=1", "k=9");
    writeAll(f, changed);
    QByteArray v;
    ASSERT_TRUE(IniFile::read(f, "S", "k", v));
    EXPECT_EQ(v, "9");
}
