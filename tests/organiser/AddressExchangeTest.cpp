#include "organiser/AddressExchange.h"
#include "OrganiserFixture.h"
#include "organiser/TextFile.h"

#include <QDir>

using namespace mirel;
using namespace mirel::test;

namespace {

class AddressExchangeTest : public OrganiserFixture {
protected:
    AddressBook book{ctx};
    AddressExchange exchange{ctx};

    void SetUp() override {
        OrganiserFixture::SetUp();
        QDir().mkpath(QFileInfo(folders.skinFile()).path());
        writeAll(folders.skinFile(),
                 "[Address]\r\nexportstring=" +
                     readAll(testData("addressbook/export.csv")).split('\r')[0] + "\r\n");
    }
    QByteArray import(const QString& path) {
        const auto csv = exchange.open(path);
        if (!csv)
            return "refused";
        const auto outcome =
            exchange.importRecords(*csv, preselectColumns(csv->columns(), exchange.captions()));
        return QByteArray::number(outcome.written) + " written, " +
               QByteArray::number(outcome.empty + csv->refused) + " left out";
    }
    Contact contact(int n) { return book.read(QByteArray::number(n) + ".dat").value_or(Contact{}); }
};

// Catches: export field order, quoting of ";", notes flattening, the
// header, CR LF and list order; and an import that does not give back
// what was exported (the notes' line break is the one loss the format has).
TEST_F(AddressExchangeTest, ExportIsExactAndImportsBackToTheSameFiles) {
    Contact zoe, adam;
    zoe.fields[0] = "Zo\xeb \xc5ngstr\xf6m";
    zoe.fields[4] = "a;b";
    zoe.fields[12] = "zoe@example.org";
    zoe.fields[14] = "www.example.org";
    zoe.notes = "line one\r\nline two";
    adam.fields[0] = "adam";
    adam.fields[1] = "quote \"x\"";
    OrganiserState st;
    ASSERT_TRUE(book.save(st, zoe) && book.save(st, adam));
    const QString out = dir.file("book.csv");
    ASSERT_TRUE(exchange.exportTo(out));
    EXPECT_EQ(readAll(out), readAll(testData("addressbook/export.csv")));

    const QByteArray adamFile = readAll(book.folder() + "/1.dat");
    for (const char* f : {"0.dat", "1.dat"})
        QFile::remove(book.folder() + "/" + f);
    EXPECT_EQ(import(out), "2 written, 0 left out");
    EXPECT_EQ(readAll(book.folder() + "/0.dat"), adamFile);
    EXPECT_EQ(contact(1).fields, zoe.fields);
    EXPECT_EQ(contact(1).notes, "line one line two");
    EXPECT_EQ(import(out), "2 written, 0 left out"); // twice gives every contact twice
    EXPECT_EQ(contact(3).fields, zoe.fields);
}

// Catches: encoding detection, RFC 4180 quotes and spanning lines, a
// stray quote swallowing the following lines, preselection by synonyms,
// ragged lines and refused records.
TEST_F(AddressExchangeTest, FilesOfOtherPrograms) {
    const QString hostile = dir.file("hostile.csv");
    writeAll(hostile, QByteArray("Name,Notes\r\nB,x") + '\0' + "y\r\n" + QByteArray(2 << 20, 'z') +
                          "\r\n\"C\",\"unclosed\r\nD\r\nA,x");
    const QString headerOnly = dir.file("header.csv");
    writeAll(headerOnly, "Name;Phone\r\n  \r\n");
    const struct {
        QString file;
        QByteArray outcome;
        int contact, field;
        QByteArray value;
    } rows[] = {
        {testData("addressbook/utf8-bom-comma.csv"), "2 written, 1 left out", 0, 0,
         "M\xfcller, J\xf6rg"},
        {"", "", 0, 9, "+49 170 1"},
        {"", "", 0, 12, "joerg@example.org"},
        {"", "", 0, 16, "first line\r\nsecond \"quoted\" line"},
        {"", "", 1, 0, "?ukasz Nowak"},
        {testData("addressbook/cp1252-semicolon.csv"), "3 written, 0 left out", 0, 0,
         "Smith; John"},
        {"", "", 0, 12, "john@example.org"},
        {"", "", 1, 0, "O\"Brien;555"},
        {"", "", 2, 0, "Caf\xe9 Z\xfcrich"},
        {"", "", 2, 8, "1"},
        {hostile, "3 written, 2 left out", 0, 0, "C"},
        {"", "", 0, 16, "\"unclosed"},
        {"", "", 1, 0, "D"},
        {"", "", 2, 16, "x"},
        {headerOnly, "refused", 0, -1, ""},
    };
    for (const auto& r : rows) {
        if (!r.file.isEmpty()) {
            for (const QString& f : TextFile::listFolder(book.folder()))
                QFile::remove(book.folder() + "/" + f);
            EXPECT_EQ(import(r.file), r.outcome) << r.file.toStdString();
        }
        if (r.field < 0)
            continue;
        EXPECT_EQ(r.field < 16 ? contact(r.contact).fields[r.field] : contact(r.contact).notes,
                  r.value)
            << r.contact << "/" << r.field;
    }
    EXPECT_TRUE(sink.shown.back().text.contains("holds no addresses"));
    EXPECT_EQ(
        parseAssignment(formatAssignment({3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2})),
        (ColumnAssignment{3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}));
}

} // namespace
