// Laying out a busy screen: a section of 60 control lines (buttons, pictures,
// texts, labels and lists) through the INI helpers into a window, then
// clearing it again, beside creating and deleting the same number of plain
// widgets (the floor).
#include "BenchMain.h"
#include "platform/SettingsStore.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "skin/SkinLines.h"
#include "ui/LayoutEngine.h"
#include "ui/SkinHost.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <memory>

using namespace mirel;

namespace {

constexpr int kControls = 60;

using bench::NullSink;

QApplication& app() {
    static int argc = 1;
    static char name[] = "LayoutBench";
    static char* argv[] = {name, nullptr};
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication a(argc, argv);
    return a;
}

struct Fixture {
    QTemporaryDir dir;
    NullSink sink;
    SettingsStore store{dir.path() + QStringLiteral("/config")};
    IniHelpers ini{sink, store};
    Folders folders;
    std::unique_ptr<LayoutEngine> engine;
    QString skin;

    // extraPictures: more files in the theme folder, as a real theme has
    // (the bundled one holds some two hundred).
    explicit Fixture(int extraPictures = 0) {
        app();
        folders.ProgramDir = dir.path();
        folders.ThemeDir = QStringLiteral("\\theme\\");
        QDir().mkpath(dir.path() + QStringLiteral("/theme"));
        QImage pic(40, 20, QImage::Format_RGB32);
        pic.fill(Qt::darkBlue);
        pic.save(dir.path() + QStringLiteral("/theme/b.bmp"));
        pic.save(dir.path() + QStringLiteral("/theme/p.bmp"));
        for (int i = 0; i < extraPictures; ++i)
            QFile::copy(dir.path() + QStringLiteral("/theme/b.bmp"),
                        dir.path() + QStringLiteral("/theme/x%1.bmp").arg(i));
        QByteArray text = "[DEFAULT]\r\nBackGround=0,0,0\r\n[Busy]\r\n";
        static const char* const kLines[] = {
            "B,b.bmp,%1,10,40,20,click,click,0,COMMAND%1",
            "P,p.bmp,%1,40,40,20",
            "T,t,%1,70,80,20,255,255,255,0,0,0,Sans,9",
            "LB,l,%1,100,80,16,0,0,0,255,255,255,Sans,8,Caption %1",
            "L,list,%1,130,80,100,255,255,255,0,0,0,Sans,9",
        };
        for (int i = 1; i <= kControls; ++i) {
            const QString line = QString::fromLatin1(kLines[i % 5]).arg(i * 12);
            text += QByteArray(i < 10 ? "0" : "") + QByteArray::number(i) + "=" + line.toLatin1() +
                    "\r\n";
        }
        skin = dir.path() + QStringLiteral("/theme/Mirel.skn");
        QFile f(skin);
        f.open(QIODevice::WriteOnly);
        f.write(text);
        f.close();
        engine = std::make_unique<LayoutEngine>(SkinContext{folders, ini, nullptr, false, 0});
    }
};

// What the event loop would do between two screens: deliver the posted
// events (without a loop they pile up and every new post gets slower) and
// delete the controls that clearing let go.
void settle() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

Fixture& fixture() {
    static Fixture f;
    return f;
}

void layoutBusyScreen(benchmark::State& state, Fixture& f) {
    SkinHost host;
    host.resize(1024, 768);
    for (auto _ : state) {
        f.engine->LayoutSection(host, "Busy", f.skin);
        f.engine->ClearScreen(host);
        settle();
    }
    state.SetItemsProcessed(state.iterations() * kControls);
}

void BM_LayoutBusyScreen(benchmark::State& state) {
    layoutBusyScreen(state, fixture());
}
BENCHMARK(BM_LayoutBusyScreen)->Unit(benchmark::kMillisecond);

// The same screen from a theme folder of two hundred pictures: what a
// screen asks of the folder (its override file is looked for there, and
// missing) must not grow with the pictures it holds.
void BM_LayoutBusyScreenFullFolder(benchmark::State& state) {
    static Fixture full(200);
    layoutBusyScreen(state, full);
}
BENCHMARK(BM_LayoutBusyScreenFullFolder)->Unit(benchmark::kMillisecond);

// The reading part alone: the numbered lines with the override lookups.
void BM_ReadSectionLines(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state)
        benchmark::DoNotOptimize(SkinLines(f.ini).read("Busy", f.skin));
    state.SetItemsProcessed(state.iterations() * kControls);
}
BENCHMARK(BM_ReadSectionLines)->Unit(benchmark::kMillisecond);

// Both floors: each round makes kControls widgets on the host, shows them,
// deletes them newest first and lets the events settle, as a layout and a
// clear of a screen do.
template <typename Make> void makeShowAndDrop(benchmark::State& state, QWidget& host, Make make) {
    for (auto _ : state) {
        std::vector<QWidget*> made;
        for (int i = 1; i <= kControls; ++i) {
            QWidget* w = make(i);
            w->show();
            made.push_back(w);
        }
        for (auto it = made.rbegin(); it != made.rend(); ++it)
            delete *it;
        settle();
    }
    state.SetItemsProcessed(state.iterations() * kControls);
}

void BM_PlainWidgetsFloor(benchmark::State& state) {
    fixture();
    QWidget host;
    host.resize(1024, 768);
    makeShowAndDrop(state, host, [&](int i) {
        auto* w = new QLabel(&host);
        w->setGeometry((i - 1) * 12, 10, 40, 20);
        return w;
    });
}
BENCHMARK(BM_PlainWidgetsFloor)->Unit(benchmark::kMillisecond);

// The same controls as the busy screen, made directly: a button, a picture,
// a text box, a caption and a list per five lines, with their colours and
// fonts. Sixty labels leave out what a list box alone costs the toolkit
// (its model, view and scroll bars), so this floor shows what the skin
// itself adds: reading, parsing and placing the lines.
void BM_SameWidgetsFloor(benchmark::State& state) {
    fixture();
    QWidget host;
    host.resize(1024, 768);
    QPixmap pic(40, 20);
    pic.fill(Qt::darkBlue);
    QPalette pal = host.palette();
    pal.setColor(QPalette::Base, Qt::white);
    pal.setColor(QPalette::Text, Qt::black);
    QFont font = host.font();
    font.setFamily(QStringLiteral("Sans"));
    font.setPointSize(9);
    makeShowAndDrop(state, host, [&](int i) {
        QWidget* w = nullptr;
        switch (i % 5) {
        case 0: {
            auto* b = new QPushButton(&host);
            b->setIcon(pic);
            w = b;
            break;
        }
        case 1: {
            auto* l = new QLabel(&host);
            l->setPixmap(pic);
            w = l;
            break;
        }
        case 2:
            w = new QLineEdit(&host);
            break;
        case 3:
            w = new QLabel(QStringLiteral("Caption %1").arg(i), &host);
            break;
        default:
            w = new QListWidget(&host);
            break;
        }
        if (i % 5 >= 2) { // the skin colours texts, captions and lists
            w->setPalette(pal);
            w->setFont(font);
        }
        w->setGeometry(i * 12, 10 + 30 * (i % 5), 80, 20);
        return w;
    });
}
BENCHMARK(BM_SameWidgetsFloor)->Unit(benchmark::kMillisecond);

} // namespace

MIREL_BOUND(BM_LayoutBusyScreen, BM_PlainWidgetsFloor, 3);
MIREL_BOUND(BM_LayoutBusyScreen, BM_SameWidgetsFloor, 3);
MIREL_BOUND(BM_LayoutBusyScreenFullFolder, BM_SameWidgetsFloor, 3);
MIREL_FLOOR(BM_ReadSectionLines, BM_PlainWidgetsFloor);
