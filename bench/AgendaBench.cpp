// An agenda of 5,000 items (1,000 weekly): loading plus the present view,
// and the overview refresh with 1,000 open tasks; beside reading and
// decoding the same store once (the floor). Loading is also swept over
// 1,000 and 20,000 items: the ratio stays put when the cost is linear.
#include "BenchMain.h"
#include "organiser/AgendaStore.h"
#include "organiser/Overview.h"
#include "platform/IniFile.h"
#include "settings/TripletCodec.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <map>
#include <memory>

using namespace mirel;

namespace {

using bench::NullSink;

struct World {
    QTemporaryDir dir;
    NullSink sink;
    SettingsStore store{dir.path() + QStringLiteral("/config")};
    IniHelpers ini{sink, store};
    FixedClock clock{QDateTime(QDate(2006, 11, 16), QTime(12, 0))};
    Folders folders{dir.path(), QStringLiteral("\\themes\\Default\\")};
    OrganiserContext ctx{folders, ini, clock, sink};
    explicit World(int items) {
        QDir().mkpath(dir.path() + QStringLiteral("/Mirel/Todo"));
        QByteArray ini = "[AGENDA]\r\nID=" + QByteArray::number(items) + "\r\n";
        for (int i = 0; i < items; ++i) {
            const bool weekly = i % 5 == 0;
            const QDate d = QDate(2006, 1, 1).addDays(i % 700);
            const QByteArray date = weekly ? "00000000" : d.toString("yyyyMMdd").toLatin1();
            QByteArray item = date + "0900\x01" + date + "1000\x01" + "Item " +
                              QByteArray::number(i) + "\r\nsecond line\x01" + (weekly ? "1" : "0") +
                              "\x01" + "3\x01";
            for (int w = 0; w < 7; ++w)
                item += QByteArray(weekly && (i + w) % 3 == 0 ? "1" : "0") + "\x01";
            ini += QByteArray::number(i + 1) + "=" + encodeTriplets(item) + "\r\n";
        }
        IniFile::save(dir.path() + QStringLiteral("/Mirel/agenda.ini"), ini);
        for (int i = 0; i < 1000; ++i) {
            QFile f(dir.path() +
                    QStringLiteral("/Mirel/Todo/2006%1.tod").arg(i, 10, 10, QLatin1Char('0')));
            f.open(QIODevice::WriteOnly);
            f.write("0\r\nTask " + QByteArray::number(i * 7919 % 1000) + "\r\n");
        }
    }
};

World& world(int items = 5000) {
    static std::map<int, std::unique_ptr<World>> worlds;
    std::unique_ptr<World>& w = worlds[items];
    if (!w)
        w = std::make_unique<World>(items);
    return *w;
}

void BM_ReadAndDecodeFloor(benchmark::State& state) {
    World& w = world(int(state.range(0)));
    for (auto _ : state) {
        QByteArray bytes;
        IniFile::load(w.dir.path() + QStringLiteral("/Mirel/agenda.ini"), bytes);
        qsizetype total = 0;
        for (const QByteArray& line : bytes.split('\n')) {
            const qsizetype eq = line.indexOf('=');
            if (eq > 0)
                total += decodeTriplets(QByteArrayView(line).sliced(eq + 1)).size();
        }
        benchmark::DoNotOptimize(total);
    }
}
BENCHMARK(BM_ReadAndDecodeFloor)->Arg(1000)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);

void BM_LoadAndPresentView(benchmark::State& state) {
    AgendaStore store(world(int(state.range(0))).ctx);
    AgendaLists lists;
    SortedList sorted, rows{false};
    for (auto _ : state) {
        store.load(lists);
        store.showList(lists, AgendaStore::View::Present, sorted, rows);
    }
    state.counters["rows"] = double(rows.size());
}
BENCHMARK(BM_LoadAndPresentView)->Arg(1000)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_LoadAndPresentView / 1000, BM_ReadAndDecodeFloor / 1000);
MIREL_BOUND(BM_LoadAndPresentView / 5000, BM_ReadAndDecodeFloor / 5000, 2);
MIREL_FLOOR(BM_LoadAndPresentView / 20000, BM_ReadAndDecodeFloor / 20000);

void BM_OverviewRefresh(benchmark::State& state) {
    AgendaStore store(world().ctx);
    AgendaLists lists;
    store.load(lists);
    Overview ov(world().ctx);
    const OverviewTexts texts = ov.readTexts();
    SortedList rows{false}, tasks;
    for (auto _ : state)
        ov.refresh(texts, lists, rows, tasks);
    state.counters["rows"] = double(rows.size());
}
BENCHMARK(BM_OverviewRefresh)->Unit(benchmark::kMillisecond);
MIREL_BOUND(BM_OverviewRefresh, BM_ReadAndDecodeFloor / 5000, 2);

// A fairer floor for the overview, which reads no store (the agenda lists
// are already loaded) but the head of every task file to find the open
// ones: a thousand opens, reads and closes, here made with bare calls.
void BM_OverviewWorkFloor(benchmark::State& state) {
    World& w = world();
    const QByteArray todo = QFile::encodeName(w.dir.path() + QStringLiteral("/Mirel/Todo/"));
    for (auto _ : state) {
        qsizetype total = 0;
        DIR* dir = ::opendir(todo.constData());
        while (const dirent* e = ::readdir(dir)) {
            const int fd = ::openat(::dirfd(dir), e->d_name, O_RDONLY | O_CLOEXEC);
            char head[64];
            if (fd >= 0 && e->d_name[0] != '.')
                total += ::read(fd, head, sizeof head);
            if (fd >= 0)
                ::close(fd);
        }
        ::closedir(dir);
        benchmark::DoNotOptimize(total);
    }
}
BENCHMARK(BM_OverviewWorkFloor)->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_OverviewRefresh, BM_OverviewWorkFloor);

} // namespace
