#include "SkinFixture.h"
#include "ui/AnimatedPicture.h"
#include "ui/SkinButton.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPushButton>
#include <QTextBrowser>
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

    EXPECT_EQ(s.button(1).picturePath,
              folders.themeFolder().replace('\\', '/').replace("//", "/") + "button.bmp");
    EXPECT_EQ(s.button(1).hoverSound, "click");
    // The picture name was written in another case: the file on disk is found.
    EXPECT_TRUE(s.button(2).picturePath.endsWith("/button.bmp"));
    EXPECT_EQ(s.button(2).command, "\"/usr/bin/prog\" -a,b,c");
    EXPECT_EQ(s.tables.prioritySlots[0], 3);
    EXPECT_EQ(s.tables.prioritySlots[1], 4);

    // Negative left counts from the right edge; percentages for pictures.
    EXPECT_EQ(host->button(2)->geometry(), QRect(974, 10, 40, 20));
    EXPECT_EQ(host->picture(1)->geometry(), QRect(512, 0, 60, 40));
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
    EXPECT_EQ(s.button(5).command, "TODODONE");
    EXPECT_EQ(s.tables.modeSlots[3], 5);
    EXPECT_EQ(s.tables.doneButton, 5);
    EXPECT_EQ(s.tables.mailButtons.value("emailreply"), 6);
    EXPECT_EQ(s.tables.agendaLabels.value("DAY"), 1);
    EXPECT_EQ(s.tables.themePicture, 2);
    EXPECT_FALSE(host->picture(2)->pixmap().isNull());
    EXPECT_EQ(s.tables.animations, 1);
    EXPECT_EQ(s.tables.animationFrames, 3);

    // The override widened the text box; the stretched list and text fill to the edges.
    EXPECT_EQ(host->textBox(1)->geometry(), QRect(10, 70, 300, 20));
    EXPECT_EQ(host->textBox(1)->maxLength(), 255);
    EXPECT_EQ(host->generalList()->geometry(), QRect(10, 100, 1014, 658));
    EXPECT_EQ(host->multiLine(1)->geometry(), QRect(220, 70, 794, 698));
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
    EXPECT_EQ(s.tables.controls, before.controls);
    EXPECT_EQ(s.tables.labels + s.tables.animations + s.tables.themePicture, 0);
    EXPECT_EQ(s.tables.modeSlots, before.modeSlots);
    EXPECT_EQ(s.tables.prioritySlots, before.prioritySlots);
    EXPECT_TRUE(s.tables.mailButtons.isEmpty());
    EXPECT_EQ(s.selectedPriorityButton, 0);
    EXPECT_TRUE(s.currentScreen.isEmpty());
    EXPECT_FALSE(s.closing);
    EXPECT_EQ(host->generalList(), nullptr);
    EXPECT_EQ(host->button(6), nullptr);
    EXPECT_NE(host->button(4), nullptr);
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
    EXPECT_EQ(list->geometry(), QRect(10, 10, 1004, 200));
    EXPECT_TRUE(list->isVisibleTo(host.get()));
    EXPECT_EQ(body->geometry(), html->geometry());
    EXPECT_EQ(html->geometry(), QRect(10, 220, 1004, 488));
    EXPECT_TRUE(html->isVisibleTo(host.get()));
    EXPECT_EQ(attachments->geometry(), QRect(10, 718, 1004, 40));
    // The attachment list is placed, but only the message view shows it.
    EXPECT_FALSE(attachments->isVisibleTo(host.get()));
    EXPECT_TRUE(host->modeButton(0)->isVisibleTo(host.get()));
    EXPECT_EQ(host->modeButton(0)->geometry(), QRect(10, 738, 60, 20));
    EXPECT_TRUE(host->checkButton(1)->isVisibleTo(host.get()));
    EXPECT_FALSE(host->checkButton(0)->isVisibleTo(host.get()));
    ASSERT_TRUE(host->overviewList());

    engine.ClearScreen(*host);
    for (QWidget* w : {list, body, html, attachments, static_cast<QWidget*>(host->modeButton(0)),
                       static_cast<QWidget*>(host->checkButton(1))})
        EXPECT_FALSE(w->isVisibleTo(host.get())) << w->objectName().toStdString();
    EXPECT_EQ(host->overviewList(), nullptr);
}

TEST_F(LayoutEngineTest, OwnWidgetsTakeThePlaceOfPlaceholders) {
    auto* view = new QTextBrowser;
    host->setPlaced(PlacedPart::HtmlView, view);
    engine.LayoutSection(*host, "Email", skin);
    EXPECT_EQ(view->parentWidget(), host.get());
    EXPECT_EQ(view->geometry(), QRect(10, 220, 1004, 488));
}

TEST_F(LayoutEngineTest, FixedMailDialogControls) {
    engine.LayoutSection(*host, "MAILDIALOG", terminal);
    auto* accounts = qobject_cast<QComboBox*>(host->special("emailaccounts"));
    ASSERT_TRUE(accounts);
    EXPECT_EQ(accounts->geometry(), QRect(10, 10, 100, 20));
    // "emailbut" reads its element number from the ninth character on.
    ASSERT_TRUE(host->hasSpecial("emailbut3"));
    auto* but = qobject_cast<QPushButton*>(host->special("emailbut3"));
    ASSERT_TRUE(but);
    EXPECT_EQ(but->geometry(), QRect(10, 40, 40, 20));
    EXPECT_FALSE(but->icon().isNull());
    EXPECT_EQ(host->special("emailtextcc")->geometry(), QRect(10, 70, 100, 20));
    // Any other text selector is the subject field.
    EXPECT_EQ(host->special("emailtextsubject")->geometry(), QRect(10, 100, 100, 20));
    EXPECT_EQ(host->special("emailhostdelete")->pos(), QPoint(5, 748));
    EXPECT_EQ(host->special("emailedit")->geometry(), QRect(120, 10, 894, 748));
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

TEST_F(LayoutEngineTest, AnimationSwitchesFromTheStartupSection) {
    TempDir local;
    const QString file = local.file("terminal.skn");
    writeAll(file, "[STARTUP]\r\nAnimated=True\r\nAnimDelay=35\r\n");
    engine.readAnimation("STARTUP", file);
    EXPECT_TRUE(engine.context().animated);
    EXPECT_EQ(engine.context().animDelay, 35);
    writeAll(file, "[STARTUP]\r\nAnimated=0\r\n");
    engine.readAnimation("STARTUP", file);
    EXPECT_FALSE(engine.context().animated);
    EXPECT_EQ(engine.context().animDelay, 35); // missing keys leave the value
}

} // namespace
