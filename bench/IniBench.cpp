// "incomming.ini" grows by one key per received message and is read and
// written through the INI helpers for every message. Measured on a file of
// 50,000 keys: the lookup of a missing key and the write of a new key, beside
// reading the file once into memory (the floor), in a file left alone for
// a few seconds and in one touched just before each lookup. A write is also set beside
// the least any durable rewrite costs: reading the file, writing it out
// again and waiting for the disk.
#include "BenchMain.h"
#include "platform/IniFile.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace mirel;

namespace {

constexpr int kKeys = 50000;

using bench::NullSink;

struct Fixture {
    QTemporaryDir dir;
    QString file = dir.path() + QStringLiteral("/incomming.ini");
    Fixture() {
        QByteArray bytes = "[Messages]\r\n";
        for (int i = 0; i < kKeys; ++i)
            bytes += "<" + QByteArray::number(i * 7919) + ".1234@mail.example.org>=1\r\n";
        IniFile::save(file, bytes);
        // Between sessions the record file stands for seconds or days after
        // its last write; a reader may trust such a file by its times.
        ::sleep(4);
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void BM_ReadFileFloor(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state) {
        QFile file(f.file);
        file.open(QIODevice::ReadOnly);
        benchmark::DoNotOptimize(file.readAll());
    }
}
BENCHMARK(BM_ReadFileFloor)->Unit(benchmark::kMicrosecond);

void BM_ReadIniKeyMissing(benchmark::State& state) {
    Fixture& f = fixture();
    NullSink sink;
    SettingsStore store(f.dir.path());
    IniHelpers ini(sink, store);
    for (auto _ : state)
        benchmark::DoNotOptimize(ini.ReadIniKey("Messages", "<not-there@x>", f.file));
}
BENCHMARK(BM_ReadIniKeyMissing)->Unit(benchmark::kMicrosecond);
MIREL_BOUND(BM_ReadIniKeyMissing, BM_ReadFileFloor, 2);

// The same lookup in a file touched just before it: read and compared with
// the kept content every time.
void BM_ReadIniKeyMissingJustWritten(benchmark::State& state) {
    Fixture& f = fixture();
    NullSink sink;
    SettingsStore store(f.dir.path());
    IniHelpers ini(sink, store);
    const QByteArray name = QFile::encodeName(f.file);
    for (auto _ : state) {
        state.PauseTiming();
        ::utimensat(AT_FDCWD, name.constData(), nullptr, 0);
        state.ResumeTiming();
        benchmark::DoNotOptimize(ini.ReadIniKey("Messages", "<not-there@x>", f.file));
    }
}
BENCHMARK(BM_ReadIniKeyMissingJustWritten)->Unit(benchmark::kMicrosecond);
MIREL_FLOOR(BM_ReadIniKeyMissingJustWritten, BM_ReadFileFloor);

void BM_WriteIniKeyNew(benchmark::State& state) {
    Fixture& f = fixture();
    NullSink sink;
    SettingsStore store(f.dir.path());
    IniHelpers ini(sink, store);
    int n = 0;
    for (auto _ : state) {
        const QByteArray key = "<new" + QByteArray::number(n++) + "@x>";
        ini.WriteIniKey("Messages", key, "1", f.file);
        state.PauseTiming(); // keep the file at 50,000 keys
        IniFile::removeKey(f.file, "Messages", key);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_WriteIniKeyNew)->Unit(benchmark::kMicrosecond);
MIREL_FLOOR(BM_WriteIniKeyNew, BM_ReadFileFloor);

void BM_ReadWriteFsyncFloor(benchmark::State& state) {
    Fixture& f = fixture();
    const QString copy = f.dir.path() + QStringLiteral("/copy.ini");
    for (auto _ : state) {
        QFile in(f.file);
        in.open(QIODevice::ReadOnly);
        const QByteArray bytes = in.readAll();
        QFile out(copy);
        out.open(QIODevice::WriteOnly | QIODevice::Truncate);
        out.write(bytes);
        out.flush();
        ::fsync(out.handle());
    }
}
BENCHMARK(BM_ReadWriteFsyncFloor)->Unit(benchmark::kMicrosecond);
MIREL_BOUND(BM_WriteIniKeyNew, BM_ReadWriteFsyncFloor, 1.5);

} // namespace
