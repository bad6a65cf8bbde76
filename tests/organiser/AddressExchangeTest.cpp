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

// Catches: export field order, quoting of ";" and quotes, notes flattening,
// the header, CR LF and list order; an import that does not give back what
// was exported or overwrites the contacts already there. The book is filled
// from the expected file itself (whose reading the next test checks).
TEST_F(AddressExchangeTest, ExportIsExactAndImportsBack) {
    const QString file = testData("addressbook/export.csv");
    EXPECT_EQ(import(file), "2 written, 0 left out");
    Contact zoe = contact(1);
    zoe.notes = "line one\r\nline two"; // exported on one line
    OrganiserState st;
    ASSERT_TRUE(book.save(st, zoe));
    const QString out = dir.file("book.csv");
    ASSERT_TRUE(exchange.exportTo(out));
    EXPECT_EQ(readAll(out), readAll(file));
    // Read back into the same book: added after what is there, as it was.
    EXPECT_EQ(import(out), "2 written, 0 left out");
    EXPECT_EQ(contact(3).fields, zoe.fields);
}

// Catches: encoding detection, RFC 4180 quotes and spanning lines, a
// stray quote swallowing the following lines, preselection by synonyms,
// ragged lines and refused records.
TEST_F(AddressExchangeTest, FilesOfOtherPrograms) {
    writeAll(dir.file("hostile.csv"), QByteArray("Name,Notes\r\nB,x") + '\0' + "y\r\n" +
                                          QByteArray(2 << 20, 'z') +
                                          "\r\n\"C\",\"unclosed\r\nD\r\nA,x");
    writeAll(dir.file("header.csv"), "Name;Phone\r\n  \r\n");
    for (const auto& r : readTable("tables/address-import.txt")) {
        if (r[0] != "-") {
            for (const QString& f : TextFile::listFolder(book.folder()))
                QFile::remove(book.folder() + "/" + f);
            const QString file = QString::fromLatin1(r[0]);
            const bool made = file == "hostile.csv" || file == "header.csv";
            EXPECT_EQ(import(made ? dir.file(file) : testData("addressbook/" + file)), r[1])
                << r[0].data();
        }
        const int c = r[2].toInt(), f = r[3].toInt();
        if (f >= 0) {
            EXPECT_EQ(f < 16 ? contact(c).fields[f] : contact(c).notes, r[4]) << c << "/" << f;
        }
    }
    EXPECT_TRUE(sink.shown.back().text.contains("holds no addresses"));
    EXPECT_EQ(
        parseAssignment(formatAssignment({3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2})),
        (ColumnAssignment{3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}));
}

} // namespace
