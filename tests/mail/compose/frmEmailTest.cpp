#include "mail/compose/frmEmail.h"
#include "MailStoreFixture.h"
#include "TestSupport.h"
#include "mail/compose/frmEmailHtml.h"
#include "mail/store/MailStore.h"
#include "platform/Cp1252.h"
#include "platform/SettingsStore.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"

#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTextDocument>
#include <QTextEdit>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

class frmEmailTest : public MailStoreFixture {
protected:
    Folders folders{dir.file("prog"), QStringLiteral("\\theme\\")};
    LayoutEngine engine{SkinContext{folders, ini, nullptr, false, 0}};
    EmailAccountList accounts{{"* Home|p|u|pw|0|0|s|me@x.org|Me Myself|"}};
    ComposePresets presets;

    void SetUp() override {
        MailStoreFixture::SetUp();
        QDir().mkpath(dir.file("prog/theme"));
        writeAll(dir.file("prog/theme/terminal.skn"), "[DEFAULT]\r\nSound=0\r\n");
    }
    std::unique_ptr<frmEmail> open() {
        auto w = std::make_unique<frmEmail>(engine, accounts, presets, store, sink);
        w->setColourPrompt([] { return std::optional<QColor>(QColor(255, 0, 0)); });
        w->setTextPrompt([](const QString& p, const QString&) {
            return p.startsWith(QLatin1String("Link")) ? QStringLiteral("http://a.b/?x=1&y")
                                                       : QStringLiteral("https://x.org/y.png");
        });
        return w;
    }
};

// Catches: a format the toolbar applies that does not reach the mail HTML
// (or reaches it as Qt style attributes), a button not latched over its
// format, and HTML that reads back into a different document.
TEST_F(frmEmailTest, EveryToolbarFormatReachesTheTagVocabulary) {
    for (const auto& r : readTable("mail/toolbar-formats.txt")) {
        const int tool = r[0].toInt();
        auto w = open();
        w->DHTMLEdit1()->setPlainText(QStringLiteral("word"));
        w->DHTMLEdit1()->selectAll();
        if (tool == 12 || tool == 14) // these insert at the caret
            w->DHTMLEdit1()->moveCursor(QTextCursor::End);
        w->toolbar(tool);
        if (tool < 12)
            w->DHTMLEdit1()->selectAll();
        const QByteArray html = frmEmailHtml::serialise(*w->DHTMLEdit1()->document());
        EXPECT_TRUE(html.contains(r[1])) << tool << "\n" << html.constData();
        EXPECT_FALSE(html.contains("style=")) << tool;
        EXPECT_EQ(w->cmdBut(tool)->isChecked(), r[2] == "1") << tool;
        QTextDocument again;
        again.setHtml(Cp1252::toUnicode(html));
        EXPECT_EQ(frmEmailHtml::serialise(again).toStdString(), html.toStdString()) << tool;
    }
    auto w = open();
    w->DHTMLEdit1()->setPlainText(QStringLiteral("word"));
    w->applyFormat(QStringLiteral("Heading 2"));
    EXPECT_EQ(w->currentFormat(), "Heading 2");
    EXPECT_TRUE(frmEmailHtml::serialise(*w->DHTMLEdit1()->document()).contains("<H2>"));
}

// A message sent (sender, date, recipients, both bodies, the attachment) is
// the whole-program compose test's. Catches: a send without recipients, an
// attachment listed twice or its long name not cut to its end, a local
// picture linked by name.
TEST_F(frmEmailTest, RefusalsAndAttachmentList) {
    auto w = open();
    w->runCommand("OK");
    ASSERT_EQ(sink.shown.size(), 1u);
    EXPECT_EQ(sink.shown[0].text, ComposeRules::kEmptyTo);
    EXPECT_FALSE(w->sent());

    w->setTextPrompt([](const QString&, const QString&) { return QStringLiteral("/etc/x.png"); });
    w->toolbar(14);
    EXPECT_EQ(sink.shown.size(), 2u);
    EXPECT_FALSE(w->DHTMLEdit1()->toHtml().contains(QLatin1String("x.png")));

    writeAll(dir.file("report-2026-final.pdf"), "PDF");
    w->setFilePrompt([&] { return dir.file("report-2026-final.pdf"); });
    w->toolbar(16);
    w->toolbar(16);
    ASSERT_EQ(w->lvAttachments()->count(), 1);
    EXPECT_EQ(w->lvAttachments()->item(0)->text(), "26-final.pdf");
}

// Catches: typed text discarded by one click on "QUIT".
TEST_F(frmEmailTest, QuitAsksBeforeDiscardingTypedText) {
    auto w = open();
    w->DHTMLEdit1()->insertPlainText(QStringLiteral("draft"));
    sink.answer = false;
    w->runCommand("QUIT");
    EXPECT_EQ(sink.asked.size(), 1u);
    EXPECT_FALSE(w->isFinished());
    sink.answer = true;
    w->runCommand("QUIT");
    EXPECT_TRUE(w->isFinished());
    EXPECT_TRUE(store.FillMessageIndexList("1").empty());
}

} // namespace
