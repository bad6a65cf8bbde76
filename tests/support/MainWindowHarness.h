#pragma once
// The real main window over a skin from tests/data, in a program folder of its
// own with a fixed clock, a message sink that records and no single-instance
// socket. Only the window tests include it (it needs the widget library).
#include "TestSupport.h"
#include "app/ShellValues.h"
#include "app/frmMain.h"
#include "platform/Clock.h"
#include "platform/SettingsStore.h"

#include <QDir>
#include <QListWidget>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace mirel::test {

struct MainWindowHarness {
    TempDir dir;
    SettingsStore store{dir.file("config")};
    RecordingMessageSink sink;
    FixedClock clock;
    std::unique_ptr<frmMain> w;

    MainWindowHarness(const QString& skin, const QDateTime& now) : clock(now) {
        QDir().mkpath(dir.file("prog/theme"));
        writeAll(dir.file("prog/theme/Mirel.skn"), readAll(testData(skin)));
        writeAll(dir.file("prog/theme/terminal.skn"), "[DEFAULT]\r\nSound=0\r\nDebug=1\r\n");
        store.SaveSetting(kFamilyApp, "Default", "ProgramDir", dir.file("prog").toUtf8());
        store.SaveSetting(kFamilyApp, "Default", "ThemeDir", "\\theme\\");
    }
    // `before` sets the window's hooks between construction and start-up.
    frmMain& start(const std::function<void(frmMain&)>& before = {}) {
        w = std::make_unique<frmMain>(store, sink, clock);
        w->setSingleInstanceEnabled(false);
        w->setBundledThemeCandidates({dir.file("none")});
        if (before)
            before(*w);
        EXPECT_EQ(w->Form_Load(), frmMain::StartResult::Ready);
        return *w;
    }
    int indexOf(const QByteArray& command) const {
        for (int i = 1; i <= w->state().buttonCount(); ++i)
            if (w->state().button(i).command == command)
                return i;
        return 0; // after shut-down nothing is found, and clicking 0 does nothing
    }
    void click(const QByteArray& command) { w->ClickButton(indexOf(command)); }
    QString file(const QString& rel) const { return dir.file("prog/Mirel/" + rel); }
    static QStringList rows(const QListWidget* list) {
        QStringList out;
        for (int i = 0; list && i < list->count(); ++i)
            out << list->item(i)->text();
        return out;
    }
};

} // namespace mirel::test
