// Receiving 1,000 messages from a local dovecot through the whole
// send/receive session (POP3 worker thread, step timer, duplicate check,
// MIME parsing and the three databases), beside a bare libcurl loop that
// fetches the same messages over one connection and keeps them in memory:
// the floor is what the network and the server cost on their own.
//
// Messages stay on the server (delete flag off); each run starts with an
// empty store, so every message is stored as new every time. The store is
// on a memory file system where there is one (BM_SendReceive1000), so the
// figure is the program's work; the same run on disk
// (BM_SendReceive1000OnDisk) shows what the disk's syncs add.
#include "BenchMain.h"
#include "mail/store/MailStore.h"
#include "mail/transport/SendReceiveRunner.h"
#include "platform/SettingsStore.h"
#include "servers/DovecotServer.h"
#include "settings/IniHelpers.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>
#include <curl/curl.h>
#include <memory>

using namespace mirel;

namespace {

constexpr int kMessages = 1000;

struct NullSink final : MessageSink {
    void showMessage(const QString&, const QString&, Icon) override {}
    bool askYesNo(const QString&, const QString&) override { return false; }
};

QCoreApplication& app() {
    static int argc = 1;
    static char name[] = "bench";
    static char* argv[] = {name, nullptr};
    static QCoreApplication* a = new QCoreApplication(argc, argv);
    return *a;
}

test::DovecotServer& server() {
    static std::unique_ptr<test::DovecotServer> s = [] {
        auto d = std::make_unique<test::DovecotServer>();
        d->addUser("bench", "pw");
        for (int i = 0; i < kMessages; ++i) {
            QByteArray body;
            const int lines = 20 + (i * 37) % 200; // about 1 to 15 KB
            for (int l = 0; l < lines; ++l)
                body += "Line " + QByteArray::number(l) + " of message " + QByteArray::number(i) +
                        ", some words to fill the row up.\r\n";
            d->deliver("bench", "Message-ID: <bench" + QByteArray::number(i) +
                                    "@mirel>\r\nFrom: a@x\r\nTo: b@x\r\nSubject: Message " +
                                    QByteArray::number(i) + "\r\n\r\n" + body);
        }
        if (!d->start())
            qFatal("dovecot did not start");
        return d;
    }();
    return *s;
}

QByteArray account() {
    return "  Bench|127.0.0.1:" + QByteArray::number(server().port()) + "|bench|pw|0|0|||Bench|";
}

void runSessions(benchmark::State& state, bool inMemory) {
    app();
    server();
    const QString pattern = inMemory && QDir(QStringLiteral("/dev/shm")).exists()
                                ? QStringLiteral("/dev/shm/mirel-bench-XXXXXX")
                                : QDir::tempPath() + QStringLiteral("/mirel-bench-XXXXXX");
    for (auto _ : state) {
        state.PauseTiming();
        QTemporaryDir dir(pattern);
        NullSink sink;
        SystemClock clock;
        SettingsStore settings(dir.filePath(QStringLiteral("config")));
        IniHelpers ini(sink, settings);
        MailStore store(dir.path(), clock, sink);
        store.MailStoreStartup(ini);
        SendReceiveRunner runner(store, ini, clock, EmailAccountList({account()}), {});
        // The local server offers no TLS: allowed here as a user would allow it.
        runner.setServerTuning([](MailServer& s) { s.plaintextAllowed = true; });
        int stored = 0;
        QObject::connect(&runner, &SendReceiveRunner::statusLine,
                         [&](const QByteArray& l) { stored += l.contains("(") ? 1 : 0; });
        QEventLoop loop;
        QObject::connect(&runner, &SendReceiveRunner::over, &loop, &QEventLoop::quit);
        state.ResumeTiming();
        runner.open();
        loop.exec();
        if (stored != kMessages) {
            // Skipped outside a pause: the library refuses to resume a
            // skipped run.
            static std::string why;
            why = "stored " + std::to_string(stored) + " of " + std::to_string(kMessages);
            state.SkipWithError(why.c_str());
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * kMessages);
}

void BM_SendReceive1000(benchmark::State& state) {
    runSessions(state, true);
}
void BM_SendReceive1000OnDisk(benchmark::State& state) {
    runSessions(state, false);
}

size_t collect(char* data, size_t size, size_t n, void* out) {
    static_cast<QByteArray*>(out)->append(data, qsizetype(size * n));
    return size * n;
}

void BM_BareCurlFetch1000(benchmark::State& state) {
    const QByteArray base = "pop3://127.0.0.1:" + QByteArray::number(server().port()) + "/";
    for (auto _ : state) {
        CURL* easy = curl_easy_init();
        QByteArray got;
        curl_easy_setopt(easy, CURLOPT_USERNAME, "bench");
        curl_easy_setopt(easy, CURLOPT_PASSWORD, "pw");
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, collect);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, &got);
        for (int i = 1; i <= kMessages; ++i) {
            const QByteArray url = base + QByteArray::number(i);
            curl_easy_setopt(easy, CURLOPT_URL, url.constData());
            if (curl_easy_perform(easy) != CURLE_OK) {
                state.SkipWithError("fetch failed");
                break;
            }
        }
        curl_easy_cleanup(easy);
        benchmark::DoNotOptimize(got.size());
    }
    state.SetItemsProcessed(state.iterations() * kMessages);
}

} // namespace

BENCHMARK(BM_SendReceive1000)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_SendReceive1000OnDisk)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
BENCHMARK(BM_BareCurlFetch1000)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
MIREL_FLOOR(BM_SendReceive1000, BM_BareCurlFetch1000);
MIREL_BOUND(BM_SendReceive1000OnDisk, BM_BareCurlFetch1000, 1.5);
