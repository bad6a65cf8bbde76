#include "app/CommandLine.h"
#include "app/SingleInstance.h"
#include "app/frmMain.h"
#include "platform/Clock.h"
#include "platform/SettingsStore.h"
#include "ui/WidgetMessageSink.h"

#include <QApplication>
#include <QFileInfo>
#include <cstdio>

namespace {

QStringList rawArguments(int argc, char** argv) {
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    return args;
}

} // namespace

int main(int argc, char** argv) {
    using namespace mirel;
    const CommandLine line = CommandLine::parse(rawArguments(argc, argv));
    if (line.mode != CommandLine::Mode::Run) {
        // Talking to the running instance needs no display.
        QCoreApplication app(argc, argv);
        SettingsStore store = SettingsStore::forCurrentUser();
        const QString name =
            SingleInstance::serverName(QFileInfo(store.fileFor(kFamilyApp)).absolutePath());
        QString message;
        const int code = line.deliver(store, name, &message);
        if (!message.isEmpty())
            std::fprintf(stderr, "%s\n", qPrintable(message));
        return code;
    }

    QApplication app(argc, argv);
    app.setQuitOnLastWindowClosed(false);
    SettingsStore store = SettingsStore::forCurrentUser();
    WidgetMessageSink messages;
    SystemClock clock;
    frmMain window(store, messages, clock);
    if (window.Form_Load() != frmMain::StartResult::Ready)
        return 0;
    return app.exec();
}
