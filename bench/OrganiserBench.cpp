// Loading the notes list with 10,000 notes and the logbook with 10,000
// entries, beside a bare listing of the folder that reads each file's first
// line (the floor).
#include "BenchMain.h"
#include "organiser/Logbook.h"
#include "organiser/NotesBook.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace mirel;

namespace {

constexpr int kItems = 10000;

using bench::NullSink;

struct World {
    QTemporaryDir dir;
    NullSink sink;
    SettingsStore store{dir.path() + QStringLiteral("/config")};
    IniHelpers ini{sink, store};
    SystemClock clock;
    Folders folders{dir.path(), QStringLiteral("\\themes\\Default\\")};
    OrganiserContext ctx{folders, ini, clock, sink};
    World() {
        const QDateTime base(QDate(2000, 1, 1), QTime(0, 0));
        for (const char* sub : {"/Mirel/Notes", "/Mirel/Logbook"})
            QDir().mkpath(dir.path() + QLatin1String(sub));
        for (int i = 0; i < kItems; ++i) {
            const QString name = base.addSecs(i * 97).toString(QStringLiteral("yyyyMMddHHmmss"));
            QFile n(dir.path() + QStringLiteral("/Mirel/Notes/") + name + QStringLiteral(".not"));
            n.open(QIODevice::WriteOnly);
            n.write("Title " + QByteArray::number((i * 7919) % kItems) + "\r\nsome body text\r\n");
            QFile l(dir.path() + QStringLiteral("/Mirel/Logbook/") + name + QStringLiteral(".log"));
            l.open(QIODevice::WriteOnly);
            l.write("Entry " + QByteArray::number(i) + "\r\nsecond line\r\n");
        }
    }
};

World& world() {
    static World w;
    return w;
}

void BM_ListFirstLinesFloor(benchmark::State& state) {
    const QString dir = world().dir.path() + QStringLiteral("/Mirel/Notes"); // built before timing
    for (auto _ : state) {
        qsizetype total = 0;
        for (const QString& f : QDir(dir).entryList(QDir::Files, QDir::Name)) {
            QFile file(dir + QLatin1Char('/') + f);
            file.open(QIODevice::ReadOnly);
            total += file.readLine().size();
        }
        benchmark::DoNotOptimize(total);
    }
}
BENCHMARK(BM_ListFirstLinesFloor)->Unit(benchmark::kMillisecond);

void BM_LoadNotes(benchmark::State& state) {
    NotesBook notes(world().ctx);
    OrganiserState st;
    for (auto _ : state)
        notes.load(st);
    state.counters["rows"] = double(st.rows.size());
}
BENCHMARK(BM_LoadNotes)->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_LoadNotes, BM_ListFirstLinesFloor);

void BM_LoadLogbook(benchmark::State& state) {
    Logbook log(world().ctx);
    OrganiserState st;
    for (auto _ : state)
        log.load(st, {});
    state.counters["rows"] = double(st.rows.size());
}
BENCHMARK(BM_LoadLogbook)->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_LoadLogbook, BM_ListFirstLinesFloor);

void BM_SearchLogbook(benchmark::State& state) {
    Logbook log(world().ctx);
    OrganiserState st;
    for (auto _ : state)
        log.load(st, "LINE");
}
BENCHMARK(BM_SearchLogbook)->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_SearchLogbook, BM_ListFirstLinesFloor);

} // namespace
