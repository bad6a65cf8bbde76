// The plain-text alternative is made from the compose document on every
// send. Measured on 1 MiB of real HTML (the documentation pages installed on
// this machine, joined), beside copying the same bytes (the floor).
#include "BenchMain.h"
#include "mail/mime/HTML2Text.h"

#include <QDirIterator>
#include <QFile>

using namespace mirel;

namespace {

constexpr qsizetype kSize = 1024 * 1024;

const QByteArray& document() {
    static const QByteArray doc = [] {
        QByteArray d;
        QDirIterator it(QStringLiteral("/usr/share/doc"), {QStringLiteral("*.html")}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (d.size() < kSize && it.hasNext()) {
            QFile f(it.next());
            if (f.open(QIODevice::ReadOnly))
                d += f.readAll();
        }
        // One long body: without this the cut at the first page's end of
        // body would leave only that page to convert.
        for (const char* tag : {"<body", "<BODY", "</body", "</BODY"})
            d.replace(tag, QByteArray(tag).replace("body", "span").replace("BODY", "SPAN"));
        if (d.isEmpty()) // no documentation installed: a typical compose page
            d = "<html><body><P>Dear Ann,<br>caf&eacute; at  ten?</P>\r\n<div>Tom</div></body>";
        while (d.size() < kSize)
            d += d;
        d.truncate(kSize);
        return d;
    }();
    return doc;
}

void BM_CopyFloor(benchmark::State& state) {
    const QByteArray& doc = document();
    for (auto _ : state) {
        QByteArray copy(doc.constData(), doc.size());
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetBytesProcessed(state.iterations() * kSize);
}
BENCHMARK(BM_CopyFloor)->Unit(benchmark::kMicrosecond);

void BM_HTML2Text(benchmark::State& state) {
    const QByteArray& doc = document();
    for (auto _ : state)
        benchmark::DoNotOptimize(HTML2Text(doc));
    state.SetBytesProcessed(state.iterations() * kSize);
}
BENCHMARK(BM_HTML2Text)->Unit(benchmark::kMicrosecond);
MIREL_BOUND(BM_HTML2Text, BM_CopyFloor, 20);

} // namespace
