#include "platform/IniDocument.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

// Catches a reader that differs from the profile functions the files were
// written for (case folding, trimming, quotes, comments, duplicate keys and
// sections), and a lookup without a parsed document that disagrees with it.
TEST(IniDocument, ReadsLikeTheProfileFunctions) {
    for (const auto& r : test::readTable("tables/ini-read.txt")) {
        SCOPED_TRACE(r[0].toStdString());
        const std::optional<QByteArray> expected =
            r[4] == "<missing>" ? std::nullopt : std::optional(r[4]);
        EXPECT_EQ(IniDocument(r[1]).value(r[2], r[3]), expected);
        EXPECT_EQ(IniDocument::lookup(r[1], r[2], r[3]), expected);
    }
}

// Catches an edit that rewrites, reorders or re-ends lines it did not change.
TEST(IniDocument, EditsKeepUntouchedLinesByteForByte) {
    for (const auto& r : test::readTable("tables/ini-edit.txt")) {
        SCOPED_TRACE(r[0].toStdString());
        IniDocument doc(r[1]);
        const QList<QByteArray> op = r[2].split(' ');
        if (op[0] == "set")
            doc.setValue(op[1], op[2], op[3]);
        else if (op[0] == "removeKey")
            doc.removeKey(op[1], op[2]);
        else
            doc.removeSection(op[1]);
        EXPECT_EQ(doc.bytes(), r[3]);
    }
}

TEST(IniDocument, ListsSectionsAndKeysInFileOrder) {
    IniDocument d("[One]\r\nb=1\r\na=2\r\nnovalue\r\n; c=3\r\n[Two]\r\n[one]\r\nz=9\r\n");
    EXPECT_EQ(d.sectionNames(), (QList<QByteArray>{"One", "Two", "one"}));
    EXPECT_EQ(d.keyNames("ONE"), (QList<QByteArray>{"b", "a", "novalue"}));
    EXPECT_TRUE(d.keyNames("Two").isEmpty());
    EXPECT_FALSE(d.removeKey("Three", "x"));
    EXPECT_FALSE(d.removeSection("Three"));
}

TEST(IniDocument, ManyWritesStayReadable) {
    IniDocument d;
    for (int i = 0; i < 300; ++i)
        d.setValue("S" + QByteArray::number(i % 7), "k" + QByteArray::number(i),
                   QByteArray::number(i));
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(d.value("s" + QByteArray::number(i % 7), "K" + QByteArray::number(i)),
                  QByteArray::number(i));
    EXPECT_EQ(d.sectionNames().size(), 7);
    EXPECT_FALSE(d.bytes().contains("\n\n"));
}

TEST(IniDocument, HugeLineDoesNotBreakParsing) {
    QByteArray big = "[A]\r\nbig=" + QByteArray(10 * 1024 * 1024, 'x') + "\r\nk=v\r\n";
    IniDocument d(big);
    EXPECT_EQ(d.value("A", "big")->size(), 10 * 1024 * 1024);
    EXPECT_EQ(d.value("A", "k"), QByteArray("v"));
}

TEST(IniDocument, BatchWriteEqualsOneByOneWrites) {
    const QByteArray start = "; c\r\n[A]\r\nk2=old\r\n\r\n[B]\r\nx=1\r\n[A]\r\nk3=dup\r\n";
    const QList<std::pair<QByteArray, QByteArray>> kv = {
        {"K1", "a"}, {"k2", "b"}, {"k3", "c"}, {"k1", "last wins"}};
    IniDocument batch(start), single(start);
    batch.setValues("a", kv);
    for (const auto& [k, v] : kv)
        single.setValue("a", k, v);
    EXPECT_EQ(batch.bytes(), single.bytes());
    EXPECT_EQ(batch.value("A", "k1"), QByteArray("last wins"));

    IniDocument fresh;
    fresh.setValues("New", kv);
    EXPECT_EQ(fresh.bytes(), "[New]\r\nK1=last wins\r\nk2=b\r\nk3=c\r\n");
}

TEST(IniDocument, SectionValuesAgreeWithLookups) {
    const QByteArray bytes = "[S]\r\nA=1\r\nb\r\nB=2\r\na=3\r\nq=\"x\"\r\n[s]\r\nc=4\r\n";
    const IniDocument doc(bytes);
    const auto all = doc.sectionValues("s");
    for (const char* k : {"a", "b", "c", "q", "zz"}) {
        const auto v = doc.value("S", k);
        EXPECT_EQ(all.contains(k), v.has_value()) << k;
        if (v) {
            EXPECT_EQ(all.value(k), *v) << k;
        }
    }
}

} // namespace
