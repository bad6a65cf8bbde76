// Opening a message while one of its folder's files cannot be read.
#include "MailStoreFixture.h"
#include "mail/view/MessageView.h"

#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

// Catches a broken attachments file hiding the whole message (the three
// files are read together) or going unreported.
TEST_F(MailStoreFixture, MessageShownPastABrokenAttachmentsFile) {
    MessageRow bodies;
    bodies.text = "Body";
    const qint32 id = addMessage("0", "Hello", {{"name=\"a.pdf\"", "%PDF"}}, bodies);
    writeAll(store.databasePath("0", "attachments.mdb"), QByteArray(4096, 'x'));
    MessageView view(store);
    const ShownMessage& m = view.ShowMessage("0", id);
    EXPECT_EQ(m.subject, "Hello");
    EXPECT_TRUE(m.page.contains("Body"));
    EXPECT_EQ(sink.shown.size(), 1u);
}

} // namespace
