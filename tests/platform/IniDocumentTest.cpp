#include "platform/IniDocument.h"

#include <gtest/gtest.h>

using namespace mirel;

namespace {

// gtest names may hold only letters, digits and underscores.
std::string caseName(const char* name) {
    std::string s = name;
    for (char& c : s)
        if (!isalnum(static_cast<unsigned char>(c)))
            c = '_';
    return s;
}

struct ReadCase {
    const char* name;
    QByteArray file;
    const char* section;
    const char* key;
    std::optional<QByteArray> expected;
};

void PrintTo(const ReadCase& c, std::ostream* os) {
    *os << c.name;
}

class IniReadTest : public ::testing::TestWithParam<ReadCase> {};

TEST_P(IniReadTest, ReadsLikeTheProfileFunctions) {
    const ReadCase& c = GetParam();
    EXPECT_EQ(IniDocument(c.file).value(c.section, c.key), c.expected) << c.name;
    EXPECT_EQ(IniDocument::lookup(c.file, c.section, c.key), c.expected) << c.name;
}

const std::optional<QByteArray> kMissing;

INSTANTIATE_TEST_SUITE_P(
    Semantics, IniReadTest,
    ::testing::Values(
        ReadCase{"plain", "[A]\r\nk=v\r\n", "A", "k", QByteArray("v")},
        ReadCase{"LF lines", "[A]\nk=v\n", "A", "k", QByteArray("v")},
        ReadCase{"no final line end", "[A]\r\nk=v", "A", "k", QByteArray("v")},
        ReadCase{"section case", "[Default]\r\nk=v\r\n", "DEFAULT", "k", QByteArray("v")},
        ReadCase{"key case", "[A]\r\nProgramDir=v\r\n", "A", "PROGRAMDIR", QByteArray("v")},
        ReadCase{"accented names fold", "[\xC9t\xE9]\r\n\xC4=1\r\n", "\xE9T\xC9", "\xE4",
                 QByteArray("1")},
        ReadCase{"blanks trimmed", "[A]\r\n  k \t=  v w \t\r\n", "A", "k", QByteArray("v w")},
        ReadCase{"blanks around section", "[ A ]\r\nk=v\r\n", "A", "k", QByteArray("v")},
        ReadCase{"indented header", "  [A]\r\nk=v\r\n", "A", "k", QByteArray("v")},
        ReadCase{"empty value is found", "[A]\r\nk=\r\n", "A", "k", QByteArray("")},
        ReadCase{"first key wins", "[A]\r\nk=1\r\nk=2\r\n", "A", "k", QByteArray("1")},
        ReadCase{"only first section looked at", "[A]\r\nx=1\r\n[A]\r\nk=2\r\n", "A", "k",
                 kMissing},
        ReadCase{"first section wins", "[A]\r\nk=1\r\n[a]\r\nk=2\r\n", "A", "k", QByteArray("1")},
        ReadCase{"key in other section", "[A]\r\n[B]\r\nk=v\r\n", "A", "k", kMissing},
        ReadCase{"missing section", "[A]\r\nk=v\r\n", "B", "k", kMissing},
        ReadCase{"missing key", "[A]\r\nk=v\r\n", "A", "j", kMissing},
        ReadCase{"keys before any section", "k=v\r\n[A]\r\n", "A", "k", kMissing},
        ReadCase{"comment line", "[A]\r\n;k=v\r\n", "A", "k", kMissing},
        ReadCase{"indented comment", "[A]\r\n  ;k=v\r\nk=w\r\n", "A", "k", QByteArray("w")},
        ReadCase{"semicolon in value kept", "[A]\r\nk=a;b\r\n", "A", "k", QByteArray("a;b")},
        ReadCase{"key without equals is missing", "[A]\r\nk\r\n", "A", "k", kMissing},
        ReadCase{"equals in value", "[A]\r\nk=a=b\r\n", "A", "k", QByteArray("a=b")},
        ReadCase{"quotes stripped", "[A]\r\nk=\" v \"\r\n", "A", "k", QByteArray(" v ")},
        ReadCase{"single quotes stripped", "[A]\r\nk='v'\r\n", "A", "k", QByteArray("v")},
        ReadCase{"unmatched quote kept", "[A]\r\nk=\"v\r\n", "A", "k", QByteArray("\"v")},
        ReadCase{"header without bracket reads as key", "[A]\r\n[B\r\nk=v\r\n", "A", "k",
                 QByteArray("v")},
        ReadCase{"last bracket closes", "[A]x]\r\nk=v\r\n", "A]x", "k", QByteArray("v")},
        ReadCase{"NUL inside value kept", QByteArray("[A]\r\nk=a\0b\r\n", 12), "A", "k",
                 QByteArray("a\0b", 3)},
        ReadCase{"UTF-8 mark skipped", "\xEF\xBB\xBF[A]\r\nk=v\r\n", "A", "k", QByteArray("v")},
        ReadCase{"CR CR LF", "[A]\r\nk=v\r\r\n", "A", "k", QByteArray("v")},
        ReadCase{"empty file", "", "A", "k", kMissing}),
    [](const auto& info) { return caseName(info.param.name); });

struct EditCase {
    const char* name;
    QByteArray before;
    std::function<void(IniDocument&)> edit;
    QByteArray after;
};

void PrintTo(const EditCase& c, std::ostream* os) {
    *os << c.name;
}

class IniEditTest : public ::testing::TestWithParam<EditCase> {};

TEST_P(IniEditTest, KeepsUntouchedLinesByteForByte) {
    const EditCase& c = GetParam();
    IniDocument doc(c.before);
    c.edit(doc);
    EXPECT_EQ(doc.bytes(), c.after) << c.name;
}

auto set(const char* s, const char* k, const char* v) {
    return [=](IniDocument& d) { d.setValue(s, k, v); };
}

INSTANTIATE_TEST_SUITE_P(
    Edits, IniEditTest,
    ::testing::Values(
        EditCase{"new file", "", set("A", "k", "v"), "[A]\r\nk=v\r\n"},
        EditCase{"new section after unterminated line", "[A]\nx=1", set("B", "k", "v"),
                 "[A]\nx=1\r\n[B]\r\nk=v\r\n"},
        EditCase{"replace in place keeps spelling and LF", "[A]\n ; c\n  Key = old \ny=2\n",
                 set("a", "KEY", "new"), "[A]\n ; c\nKey=new\ny=2\n"},
        EditCase{"append at end of section before blank lines", "[A]\r\nx=1\r\n\r\n[B]\r\ny=2\r\n",
                 set("A", "k", "v"), "[A]\r\nx=1\r\nk=v\r\n\r\n[B]\r\ny=2\r\n"},
        EditCase{"append to empty section", "[A]\r\n[B]\r\n", set("A", "k", "v"),
                 "[A]\r\nk=v\r\n[B]\r\n"},
        EditCase{"append at end of file without line end", "[A]\r\nx=1", set("A", "k", "v"),
                 "[A]\r\nx=1\r\nk=v\r\n"},
        EditCase{"second duplicate section untouched", "[A]\r\nk=1\r\n[A]\r\nk=2\r\n",
                 set("A", "k", "3"), "[A]\r\nk=3\r\n[A]\r\nk=2\r\n"},
        EditCase{"remove key", "[A]\r\nx=1\r\nk=2\r\ny=3\r\n",
                 [](IniDocument& d) { d.removeKey("A", "K"); }, "[A]\r\nx=1\r\ny=3\r\n"},
        EditCase{"remove missing key changes nothing", "[A]\r\nx=1\r\n",
                 [](IniDocument& d) { d.removeKey("A", "k"); }, "[A]\r\nx=1\r\n"},
        EditCase{"remove section up to the next", "; top\r\n[A]\r\nx=1\r\n\r\n[B]\r\ny=2\r\n",
                 [](IniDocument& d) { d.removeSection("a"); }, "; top\r\n[B]\r\ny=2\r\n"},
        EditCase{"remove last section", "[A]\r\nx=1\r\n[B]\r\ny=2",
                 [](IniDocument& d) { d.removeSection("B"); }, "[A]\r\nx=1\r\n"}),
    [](const auto& info) { return caseName(info.param.name); });

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
