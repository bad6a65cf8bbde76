// Time from process start to the main window being ready for input, beside a
// bare Qt program that shows a window of the same size and background: the
// difference is what the start-up sequence and the skin cost. Both run on the
// offscreen platform unless QT_QPA_PLATFORM says otherwise, so the figures do
// not depend on a display server.
#include "BenchMain.h"
#include "BuildPaths.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

// The floor program is this same executable started with an environment
// variable set; it answers before Google Benchmark ever sees main().
const char* const kFloorEnv = "MIREL_STARTUP_FLOOR_WINDOW";

int runFloorWindowIfAsked() {
    if (qEnvironmentVariableIsEmpty(kFloorEnv))
        return 0;
    static int argc = 1;
    static char name[] = "floor";
    static char* argv[] = {name, nullptr};
    QApplication app(argc, argv);
    QWidget w(nullptr, Qt::FramelessWindowHint);
    QPalette p = w.palette();
    p.setColor(QPalette::Window, QColor(24, 32, 56));
    w.setPalette(p);
    w.setAutoFillBackground(true);
    w.setGeometry(0, 0, 1280, 800);
    w.show();
    QCoreApplication::processEvents();
    std::printf("Ready\n");
    std::fflush(stdout);
    std::_Exit(0);
}
const int floorMode = runFloorWindowIfAsked();

QString selfPath() {
    return QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
}

QString mirelPath() {
    const QByteArray env = qgetenv("MIREL_BIN");
    if (!env.isEmpty())
        return QString::fromLocal8Bit(env);
    return QFileInfo(selfPath()).absolutePath() + QStringLiteral("/../mirel");
}

void copyTree(const QString& from, const QString& to) {
    QDir().mkpath(to);
    for (const QFileInfo& f : QDir(from).entryInfoList(QDir::Files))
        QFile::copy(f.absoluteFilePath(), to + QLatin1Char('/') + f.fileName());
}

/// A settings store and program folder with the test theme, like a first
/// start of a user who has the theme already.
struct Sandbox {
    QTemporaryDir dir;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();

    Sandbox() {
        const QString prog = dir.path() + QStringLiteral("/prog");
        copyTree(QStringLiteral(MIREL_SOURCE_DIR "/tests/data/skins/e2e"),
                 prog + QStringLiteral("/themes/Test"));
        const QString config = dir.path() + QStringLiteral("/config/TORVEX Terminal");
        QDir().mkpath(config);
        QFile f(config + QStringLiteral("/settings.ini"));
        if (f.open(QIODevice::WriteOnly))
            f.write("[Default]\r\nProgramDir=" + prog.toUtf8() +
                    "\r\nThemeDir=\\themes\\Test\\\r\n");
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.path() + QStringLiteral("/config"));
        env.insert(QStringLiteral("XDG_DATA_HOME"), dir.path() + QStringLiteral("/data"));
        env.insert(QStringLiteral("MIREL_READY_MARKER"), QStringLiteral("1"));
        if (!env.contains(QStringLiteral("QT_QPA_PLATFORM")))
            env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    }
};

/// Seconds from start to the "Ready" line; negative when it never came.
double timeToReady(const QString& program, const QProcessEnvironment& env) {
    QProcess p;
    p.setProcessEnvironment(env);
    p.setProcessChannelMode(QProcess::SeparateChannels);
    QElapsedTimer clock;
    clock.start();
    p.start(program, {});
    QByteArray out;
    while (!out.contains("Ready\n")) {
        if (!p.waitForReadyRead(20000))
            break;
        out += p.readAllStandardOutput();
    }
    const double seconds = out.contains("Ready\n") ? clock.nsecsElapsed() / 1e9 : -1.0;
    p.terminate();
    if (!p.waitForFinished(5000)) {
        p.kill();
        p.waitForFinished(5000);
    }
    return seconds;
}

void run(benchmark::State& state, const QString& program, const QProcessEnvironment& env) {
    for (auto _ : state) {
        const double s = timeToReady(program, env);
        if (s < 0) {
            state.SkipWithError("the program never reported Ready");
            break;
        }
        state.SetIterationTime(s);
    }
}

void BM_MirelStartToReady(benchmark::State& state) {
    Sandbox box;
    run(state, mirelPath(), box.env);
}

void BM_BareWindowFloor(benchmark::State& state) {
    Sandbox box;
    box.env.insert(QString::fromLatin1(kFloorEnv), QStringLiteral("1"));
    run(state, selfPath(), box.env);
}

// The program's own libraries (mail transport and parsing, sound, printing,
// SQLite) and everything they pull in, as the dynamic loader finds them.
QString librariesOf(const QString& program) {
    QProcess ldd;
    ldd.start(QStringLiteral("ldd"), {program});
    ldd.waitForFinished(10000);
    QStringList paths;
    for (const QByteArray& line : ldd.readAllStandardOutput().split('\n')) {
        const qsizetype arrow = line.indexOf("=> /");
        if (arrow >= 0)
            paths << QString::fromLocal8Bit(line.mid(arrow + 3).split(' ').value(0));
    }
    return paths.join(QLatin1Char(':'));
}

// The bare window again, with the program's libraries loaded before it
// starts: loading and linking about twice as many libraries is part of any
// start of a program that needs them, so this floor shows what the start-up
// sequence and the skin themselves cost.
void BM_BareWindowSameLibrariesFloor(benchmark::State& state) {
    Sandbox box;
    box.env.insert(QString::fromLatin1(kFloorEnv), QStringLiteral("1"));
    box.env.insert(QStringLiteral("LD_PRELOAD"), librariesOf(mirelPath()));
    run(state, selfPath(), box.env);
}

} // namespace

BENCHMARK(BM_MirelStartToReady)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_BareWindowFloor)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_BareWindowSameLibrariesFloor)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);
MIREL_BOUND(BM_MirelStartToReady, BM_BareWindowFloor, 1.5);
MIREL_BOUND(BM_MirelStartToReady, BM_BareWindowSameLibrariesFloor, 1.5);
