#include "SkinFixture.h"
#include "ui/AnimatedPicture.h"
#include "ui/SkinButton.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>

using namespace mirel;
using namespace mirel::test;

namespace {

class LayoutEngineTest : public SkinFixture {
protected:
    void layoutDefault() { engine.LayoutSection(*host, "DEFAULT", skin); }
};

TEST_F(LayoutEngineTest, DefaultSectionFillsTheButtonTables) {
    layoutDefault();
    SkinState& s = host->state();
    ASSERT_EQ(s.buttonCount(), 4);
    EXPECT_EQ(s.defaultButtonCount, 4);
    EXPECT_EQ(host->controlCount(), 5);
    EXPECT_EQ(s.tables.pictures, 1);

    // The picture name was written in another case: the file on disk is found.
    EXPECT_TRUE(s.button(2).picturePath.endsWith("/button.bmp"));
    EXPECT_EQ(s.button(2).command, "\"/usr/bin/prog\" -a,b,c");
    EXPECT_FALSE(host->picture(1)->pixmap().isNull());
    EXPECT_TRUE(host->picture(1)->testAttribute(Qt::WA_TransparentForMouseEvents));

    // Fault: after a resize, controls anchored to the right edge stayed where
    // the old width put them, outside a narrower window.
    host->resize(800, 600);
    LayoutEngine::Relayout(*host);
    EXPECT_EQ(host->button(2)->geometry(), QRect(750, 10, 40, 20));
    EXPECT_EQ(host->picture(1)->geometry(), QRect(400, 0, 60, 40));
}

TEST_F(LayoutEngineTest, ButtonClicksReachTheWindowUnlessItIsClosing) {
    struct Recorder : SkinHost {
        QList<int> clicks;
        void buttonClicked(int index) override { clicks.append(index); }
    } rec;
    rec.resize(1024, 768);
    engine.LayoutSection(rec, "DEFAULT", skin);
    SkinButton* b = rec.button(1);
    ASSERT_TRUE(b);
    b->click();
    rec.state().closing = true;
    b->click();
    EXPECT_EQ(rec.clicks, QList<int>{1});
}

TEST_F(LayoutEngineTest, ScreenSectionAndClearReturnExactlyToTheRecordedState) {
    layoutDefault();
    const SkinTables before = host->state().tables;
    const int controlsBefore = host->controlCount();

    host->state().currentScreen = "Notes";
    engine.LayoutSection(*host, "Notes", skin);
    SkinState& s = host->state();
    // 01..09 are read; "10" exists only in the override file and stops the run.
    ASSERT_EQ(s.buttonCount(), 6);
    EXPECT_EQ(s.defaultButtonCount, 4);
    EXPECT_EQ(s.tables.doneButton, 5);
    EXPECT_EQ(s.tables.mailButtons.value("emailreply"), 6);
    EXPECT_EQ(s.tables.agendaLabels.value("DAY"), 1);
    EXPECT_FALSE(host->picture(2)->pixmap().isNull());
    EXPECT_EQ(s.tables.animationFrames, 3);
    // The override widened the text box.
    EXPECT_EQ(host->textBox(1)->width(), 300);
    // The caption is one field of the comma list like every other one.
    EXPECT_EQ(host->label(1)->text(), "Day");

    QPointer<QWidget> screenButton = host->button(6);
    host->selectPriority(0);
    ASSERT_TRUE(host->button(3)->isLit());
    engine.ClearScreen(*host);
    ASSERT_FALSE(screenButton.isNull());
    EXPECT_FALSE(screenButton->isVisibleTo(host.get()));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(screenButton.isNull());
    EXPECT_EQ(host->controlCount(), controlsBefore);
    EXPECT_EQ(s.buttonCount(), before.buttons.size());
    EXPECT_EQ(s.tables.labels + s.tables.animations + s.tables.themePicture, 0);
    EXPECT_EQ(s.tables.modeSlots, before.modeSlots);
    EXPECT_TRUE(s.tables.mailButtons.isEmpty());
    EXPECT_EQ(s.selectedPriorityButton, 0);
    EXPECT_TRUE(s.currentScreen.isEmpty());
    EXPECT_EQ(host->generalList(), nullptr);
    EXPECT_FALSE(host->button(3)->isLit());

    // A second visit builds the same screen again from the same starting point.
    engine.LayoutSection(*host, "Notes", skin);
    EXPECT_EQ(s.buttonCount(), 6);
    EXPECT_EQ(host->button(5)->index(), 5);
}

TEST_F(LayoutEngineTest, AButtonMayClearItsOwnScreen) {
    // What a screen command does: the clicked button belongs to the screen
    // being cleared and is taken down while its click is still running.
    struct Switching : SkinHost {
        LayoutEngine* engine;
        QString skin;
        QByteArray next = "Email";
        void buttonClicked(int index) override {
            if (index <= state().defaultButtonCount)
                return;
            engine->ClearScreen(*this);
            state().currentScreen = next;
            engine->LayoutSection(*this, next, skin);
        }
    } h;
    h.engine = &engine;
    h.skin = skin;
    h.resize(1024, 768);
    h.show();
    engine.LayoutSection(h, "DEFAULT", skin);
    engine.LayoutSection(h, "Notes", skin);
    SkinButton* own = h.button(6);
    ASSERT_TRUE(own);
    const QPointF at = own->rect().center();
    QMouseEvent press(QEvent::MouseButtonPress, at, own->mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, at, own->mapToGlobal(at), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(own, &press);
    QCoreApplication::sendEvent(own, &release);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(h.state().currentScreen, "Email");
    EXPECT_EQ(h.state().buttonCount(), 4);
    EXPECT_TRUE(h.overviewList());
}

TEST_F(LayoutEngineTest, MailPartsAreMovedAndShownThenHiddenOnClear) {
    layoutDefault();
    engine.LayoutSection(*host, "Email", skin);
    QWidget* list = host->placed(PlacedPart::MessageList);
    QWidget* body = host->placed(PlacedPart::MessageBody);
    QWidget* html = host->placed(PlacedPart::HtmlView);
    QWidget* attachments = host->placed(PlacedPart::AttachmentList);
    EXPECT_TRUE(list->isVisibleTo(host.get()));
    // Both message views share one place; the plain one stays out of sight.
    EXPECT_EQ(body->geometry(), html->geometry());
    EXPECT_TRUE(html->isVisibleTo(host.get()));
    // The attachment list is placed, but only the message view shows it.
    EXPECT_FALSE(attachments->isVisibleTo(host.get()));
    EXPECT_TRUE(host->modeButton(0)->isVisibleTo(host.get()));
    EXPECT_TRUE(host->checkButton(1)->isVisibleTo(host.get()));
    EXPECT_FALSE(host->checkButton(0)->isVisibleTo(host.get()));
    ASSERT_TRUE(host->overviewList());

    engine.ClearScreen(*host);
    for (QWidget* w : {list, body, html, attachments, static_cast<QWidget*>(host->modeButton(0)),
                       static_cast<QWidget*>(host->checkButton(1))})
        EXPECT_FALSE(w->isVisibleTo(host.get())) << w->objectName().toStdString();
    EXPECT_EQ(host->overviewList(), nullptr);
}

TEST_F(LayoutEngineTest, FixedMailDialogControls) {
    engine.LayoutSection(*host, "MAILDIALOG", terminal);
    EXPECT_TRUE(qobject_cast<QComboBox*>(host->special("emailaccounts")));
    // "emailbut" reads its element number from the ninth character on.
    auto* but = qobject_cast<QPushButton*>(host->special("emailbut3"));
    ASSERT_TRUE(but);
    EXPECT_FALSE(but->icon().isNull());
    // Any other text selector is the subject field.
    EXPECT_EQ(host->special("emailtextsubject")->geometry(), QRect(10, 100, 100, 20));
    EXPECT_FALSE(host->hasSpecial("emailbogus"));
    EXPECT_TRUE(host->special("emailedit")->isVisibleTo(host.get()));
}

TEST_F(LayoutEngineTest, BadLinesShowWhatCanBeShown) {
    engine.LayoutSection(*host, "Broken", skin);
    SkinState& s = host->state();
    // A broken or missing GIF yields no animation, a cut-off one shows the
    // frame it still holds; a missing picture leaves an empty control.
    EXPECT_EQ(s.tables.animations, 1);
    EXPECT_EQ(s.tables.animationFrames, 1);
    EXPECT_EQ(s.tables.pictures, 1);
    EXPECT_TRUE(host->picture(1)->pixmap().isNull());
    EXPECT_EQ(s.buttonCount(), 2);
    EXPECT_EQ(host->button(1)->geometry(), QRect(0, 0, 0, 0));
    EXPECT_EQ(s.tables.labels, 1);
    EXPECT_EQ(s.tables.textBoxes, 1);
    EXPECT_GE(host->textBox(1)->x(), 0);
    EXPECT_TRUE(sink.shown.empty());

    // Missing theme folder and missing skin: nothing at all, no message.
    Folders nowhere;
    nowhere.ProgramDir = dir.file("none");
    nowhere.ThemeDir = "\\gone\\";
    LayoutEngine lost(SkinContext{nowhere, ini, nullptr, true, 1});
    SkinHost empty;
    lost.LayoutSection(empty, "DEFAULT", nowhere.skinFile());
    EXPECT_EQ(empty.controlCount(), 0);
    lost.ClearScreen(empty);
    EXPECT_TRUE(sink.shown.empty());
}

TEST_F(LayoutEngineTest, AnimatedBuildUpKeepsEventsFlowing) {
    // Each pause is a timed event loop: a timer of the program still fires
    // while the screen builds up and tears down, and the pauses add up.
    engine.setAnimation(true, 20);
    int ticks = 0;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&] { ++ticks; });
    other.start(5);
    QElapsedTimer t;
    t.start();
    engine.LayoutSection(*host, "DEFAULT", skin);
    EXPECT_GE(t.elapsed(), 5 * 20 - 10);
    EXPECT_GT(ticks, 3);
    const int afterBuild = ticks;
    host->show();
    host->state().record();
    engine.LayoutSection(*host, "Notes", skin);
    engine.ClearScreen(*host);
    EXPECT_GT(ticks, afterBuild);
    EXPECT_EQ(host->state().buttonCount(), 4);
}

TEST_F(LayoutEngineTest, HostClosedDuringThePauseStopsTheBuild) {
    engine.setAnimation(true, 10);
    auto* doomed = new SkinHost;
    doomed->resize(400, 300);
    QTimer::singleShot(15, doomed, [doomed] { doomed->deleteLater(); });
    QPointer<SkinHost> guard(doomed);
    engine.LayoutSection(*doomed, "Notes", skin);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(guard.isNull());
}

// Catches the engine ignoring the switches of the section it is told to read
// (dialogs use their own) and a missing key resetting the value.
TEST_F(LayoutEngineTest, AnimationSwitchesFromTheNamedSection) {
    const QString file = dir.file("terminal.skn");
    writeAll(file, "[STARTUP]\r\nAnimated=True\r\nAnimDelay=35\r\n");
    engine.readAnimation("STARTUP", file);
    EXPECT_TRUE(engine.context().animated);
    writeAll(file, "[STARTUP]\r\nAnimated=0\r\n");
    engine.readAnimation("STARTUP", file);
    EXPECT_FALSE(engine.context().animated);
    EXPECT_EQ(engine.context().animDelay, 35);
}

} // namespace
