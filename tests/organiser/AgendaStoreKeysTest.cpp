#include "OrganiserFixture.h"

#include "organiser/AgendaStore.h"
#include "settings/TripletCodec.h"

using namespace mirel;
using namespace mirel::test;

// Catches the one-pass store reader taking a key the old rules ignore: a
// later line of a name already seen (also after a line without "="), a
// number spelled with a leading zero, keys past "ID" or in a second
// section of the same name; items come in number order, not file order.
TEST_F(OrganiserFixture, AgendaStoreReadsItemKeysByTheirRules) {
    const auto e = [](const char* text) { return encodeTriplets(QByteArray(text)); };
    writeAll(data("agenda.ini"),
             "[AGENDA]\r\nID=5\r\n2=" + e("B") + "\r\n1=" + e("A") + "\r\n1=" + e("dup") +
                 "\r\n03=" + e("zero") + "\r\n3\r\n3=" + e("hidden") + "\r\n4=" + e("D") +
                 "\r\n6=" + e("past ID") + "\r\n[agenda]\r\n5=" + e("second section") + "\r\n");
    AgendaLists lists;
    AgendaStore(ctx).load(lists);
    QList<QByteArray> texts;
    for (const ListEntry& entry : lists.lstAgUnSort.entries())
        texts.append(entry.text);
    EXPECT_EQ(texts, (QList<QByteArray>{"A", "B", "D"}));
}
