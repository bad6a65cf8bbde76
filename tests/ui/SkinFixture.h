#pragma once
// A window host over the small test theme in tests/data/skins/Basic, with
// real INI helpers, folders and a sound player.
#include "IniFixture.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"
#include "ui/SkinHost.h"
#include "ui/SoundPlayer.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <gtest/gtest.h>
#include <memory>

namespace mirel::test {

class SkinFixture : public IniFixture {
protected:
    Folders folders = [] {
        Folders f;
        f.ProgramDir = testData(QStringLiteral("skins"));
        f.ThemeDir = QStringLiteral("\\Basic\\");
        return f;
    }();
    SoundPlayer sounds{folders, ini};
    LayoutEngine engine{SkinContext{folders, ini, &sounds, false, 0}};
    std::unique_ptr<SkinHost> host = [] {
        auto h = std::make_unique<SkinHost>();
        h->resize(1024, 768);
        return h;
    }();
    QString skin = folders.themeFile(QStringLiteral("Mirel.skn"));
    QString terminal = folders.themeFile(QStringLiteral("terminal.skn"));

    void SetUp() override { host->setSoundPlayer(&sounds); }
    void layoutDefault() { engine.LayoutSection(*host, "DEFAULT", skin); }
    // A mouse event with no button held, as the window system sends it.
    static void send(QWidget* to, QEvent::Type type, QPointF local,
                     Qt::MouseButton button = Qt::NoButton) {
        QMouseEvent e(type, local, to->mapToGlobal(local), button, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(to, &e);
    }
};

} // namespace mirel::test
