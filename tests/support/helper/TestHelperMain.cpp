// A second process for tests that need one:
//   write-keys FILE SECTION PREFIX COUNT   writes PREFIX0..PREFIXn-1 one by one
//   rewrite FILE SECTION KEY SIZE          rewrites KEY with SIZE-byte values forever
//                                          (the test kills it in the middle)
//   store-received PROGRAMDIR FILE...      stores each message file into folder "0"
//                                          as received mail, one ID per line out
#include "mail/mime/ReceivedMessageStore.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"
#include "platform/Clock.h"
#include "platform/IniFile.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <QCoreApplication>
#include <QFile>
#include <cstdio>

using namespace mirel;

namespace {
// Whatever the store reports goes to stderr; the test reads the exit code.
struct StderrSink final : MessageSink {
    void showMessage(const QString& text, const QString&, Icon) override {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
    bool askYesNo(const QString&, const QString&) override { return false; }
};
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList a = app.arguments();
    if (a.size() == 6 && a[1] == QLatin1String("write-keys")) {
        const int count = a[5].toInt();
        for (int i = 0; i < count; ++i) {
            const QByteArray key = a[4].toUtf8() + QByteArray::number(i);
            if (!IniFile::write(a[2], a[3].toUtf8(), key, "v" + QByteArray::number(i))) {
                std::fprintf(stderr, "write %d failed\n", i);
                return 2;
            }
        }
        return 0;
    }
    if (a.size() == 6 && a[1] == QLatin1String("rewrite")) {
        const qsizetype size = a[5].toLongLong();
        for (char c = 'a';; c = c == 'z' ? 'a' : char(c + 1)) {
            IniFile::write(a[2], a[3].toUtf8(), a[4].toUtf8(), QByteArray(size, c));
            std::printf("%c\n", c);
            std::fflush(stdout);
        }
    }
    if (a.size() >= 3 && a[1] == QLatin1String("store-received")) {
        StderrSink sink;
        SettingsStore settings(a[2] + QStringLiteral("/helper-settings"));
        IniHelpers ini(sink, settings);
        SystemClock clock;
        MailStore store(a[2], clock, sink);
        store.MailStoreStartup(ini);
        DuplicateDetector duplicates(ini, store.incomingRecordPath());
        ReceivedMessageStore received(store, duplicates);
        for (qsizetype i = 3; i < a.size(); ++i) {
            QFile f(a[i]);
            if (!f.open(QIODevice::ReadOnly) || !received.StoreReceivedMessage(f.readAll(), "0")) {
                std::fprintf(stderr, "not stored: %s\n", qPrintable(a[i]));
                return 2;
            }
            std::printf("%d\n", received.lastId());
        }
        return 0;
    }
    std::fprintf(stderr, "usage: see source\n");
    return 1;
}
