#include "MailStoreFixture.h"
#include "TestSupport.h"
#include "mail/compose/AddressPicker.h"
#include "mail/compose/ComposePresets.h"
#include "mail/compose/ForwardAttachments.h"
#include "mail/store/MailStore.h"
#include "mail/store/OutgoingMessageStore.h"
#include "mail/transport/SendReceiveRunner.h"
#include "platform/OutgoingMail.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches: a "Re: " stacked on an answered subject, or a missing one when
// the prefix lacks its space; a zone written from the hours alone (+0500 for
// +0545), a lost sign west of UTC, the clock shown in UTC instead of the
// zone's time; a character outside Windows-1252 lost from the HTML; sending
// from an account without a sender, or no preselection when the default
// account cannot send. The rows are in tests/data/mail/compose-rules.txt.
TEST(ComposeRules, TableOfRules) {
    const QDateTime when(QDate(2026, 3, 2), QTime(9, 5, 7), Qt::UTC);
    auto preselect = [](const QByteArray& lines) {
        const EmailAccountList a(lines.isEmpty() ? QList<QByteArray>() : lines.split(';'));
        return QByteArray::number(
            ComposeRules::preselectedEntry(a, ComposeRules::usableAccounts(a)));
    };
    for (const auto& r : readTable("mail/compose-rules.txt")) {
        QByteArray got;
        if (r[0] == "reply")
            got = ComposeRules::replySubject(r[1]);
        else if (r[0] == "date")
            got = ComposeRules::dateText(when, QTimeZone(r[1].toInt()));
        else if (r[0] == "html")
            got = ComposeRules::htmlText(QString::fromUtf8(r[1]));
        else
            got = preselect(r[1]);
        EXPECT_EQ(got, r[2]) << r[0].data() << " " << r[1].data();
    }
}

// Catches: quoted text read as markup (a "<b>" in a plain message), line
// ends kept as raw bytes, a quoted HTML body not taken as it is.
TEST(ComposeRules, InitialDocument) {
    ComposePresets p;
    EXPECT_EQ(ComposeRules::initialDocument(p), ComposeRules::kBlankDocument);
    p.quoteHeader = "<B>x</B>";
    p.quotedText = "a <b> & c\r\nd";
    EXPECT_EQ(ComposeRules::initialDocument(p),
              "<HTML><HEAD><base target=_blank></HEAD><BODY BGCOLOR=#000000 TEXT=#FFFFFF>"
              "a &lt;b&gt; &amp; c<BR>d</BODY></HTML>");
    p.quotedHtml = "<P>html</P>";
    EXPECT_EQ(ComposeRules::initialDocument(p), "<P>html</P>");
}

// Catches: entries without an address offered, order by file instead of
// name, a short file read past its end, ", " doubled or missing when
// appending. (Picking into an empty field is the whole-program compose
// test's.) The address book is tests/data/mail/addressbook.
TEST(AddressPickerTest, RowsAndAppending) {
    QList<QByteArray> rows;
    for (const PickerRow& r : AddressPicker::rows(testData("mail/addressbook")))
        rows.append(r.text);
    EXPECT_EQ(rows, (QList<QByteArray>{"\"Adam, Jr.\" <a@x.org>", "\"zoe\" <z@x.org>"}));
    EXPECT_EQ(AddressPicker::appendTo("b@y", "c@z"), "b@y, c@z");
    EXPECT_EQ(AddressPicker::appendTo("b@y", ""), "b@y");
}

using ComposeStoreTest = MailStoreFixture;

// Names and bytes of an ordinary forward, and the scratch folder emptied,
// are the whole-program compose test's. Catches: a stranger's attachment
// name leaving the scratch folder, or a name without name="..." lost.
TEST_F(ComposeStoreTest, ForwardWritesPlainNamesInsideTheScratchFolder) {
    const qint32 id = *store.createMessage("0", {}, {}, {});
    store.addAttachment("0", id, {"plain.txt", "two"});
    store.addAttachment("0", id, {"name=\"../../evil.sh\"", "three"});
    const QString temp = dir.file("prog/EmailTemp");
    const auto list = ForwardAttachments::PrepareForwardAttachments(store, "0", id, temp);
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), 2);
    EXPECT_EQ(ComposeRules::forwardEntry(list->at(0)),
              std::make_pair(temp + "/plain.txt", QStringLiteral("plain.txt")));
    EXPECT_EQ(ComposeRules::forwardEntry(list->at(1)).first, temp + "/att2.att");
    EXPECT_FALSE(QFile::exists(root("evil.sh")) || QFile::exists(dir.file("evil.sh")));

    store.addAttachment("0", id, {"name=\"empty\"", ""});
    EXPECT_FALSE(ForwardAttachments::PrepareForwardAttachments(store, "0", id, temp));
}

// Catches: a To list cut at the index field's size, bare LF line ends
// reaching SMTP, the To line sent twice. (Attachment names as sent are the
// whole-program compose test's.)
TEST_F(ComposeStoreTest, OutboxKeepsEveryRecipientAndCrlfLineEnds) {
    QByteArray to;
    for (int i = 0; i < 30; ++i)
        to += "\"Person " + QByteArray::number(i) + "\" <p" + QByteArray::number(i) + "@x.org>, ";
    to.chop(2);
    OutgoingMessage m;
    m.to = to;
    m.text = "a\nb";
    const auto r = OutgoingMessageStore(store).StoreOutgoingMessage(m, "1");
    ASSERT_TRUE(r.ok());
    const auto mail = SendReceiveRunner::readOutboxMessage(store, "1", *r.id);
    ASSERT_TRUE(mail);
    EXPECT_EQ(mail->to, to);
    EXPECT_EQ(mail->text, "a\r\nb");
    for (const auto& h : mail->headers)
        EXPECT_NE(h.first.toLower(), "to");
}

} // namespace
