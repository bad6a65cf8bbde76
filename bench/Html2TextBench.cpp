// The plain-text alternative is made from the compose document on every
// send. Measured on 1, 4 and 16 MiB of real HTML (the documentation pages
// installed on this machine, joined), beside copying the same bytes (the
// floor): the ratio stays put as the size grows when the cost is linear.
#include "BenchMain.h"
#include "mail/mime/HTML2Text.h"

#include <QDirIterator>
#include <QFile>

#include <map>

using namespace mirel;

namespace {

constexpr qsizetype kMiB = 1024 * 1024;

QByteArray joinedPages(qsizetype size) {
    QByteArray d;
    QDirIterator it(QStringLiteral("/usr/share/doc"), {QStringLiteral("*.html")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (d.size() < size && it.hasNext()) {
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
    while (d.size() < size)
        d += d;
    d.truncate(size);
    return d;
}

const QByteArray& document(int mib) {
    static std::map<int, QByteArray> docs;
    auto it = docs.find(mib);
    if (it == docs.end())
        it = docs.emplace(mib, joinedPages(mib * kMiB)).first;
    return it->second;
}

void BM_CopyFloor(benchmark::State& state) {
    const QByteArray& doc = document(int(state.range(0)));
    for (auto _ : state) {
        QByteArray copy(doc.constData(), doc.size());
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetBytesProcessed(state.iterations() * doc.size());
}
BENCHMARK(BM_CopyFloor)->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);

void BM_HTML2Text(benchmark::State& state) {
    const QByteArray& doc = document(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(HTML2Text(doc));
    state.SetBytesProcessed(state.iterations() * doc.size());
}
BENCHMARK(BM_HTML2Text)->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
MIREL_BOUND(BM_HTML2Text / 1, BM_CopyFloor / 1, 20);
MIREL_FLOOR(BM_HTML2Text / 4, BM_CopyFloor / 4);
MIREL_FLOOR(BM_HTML2Text / 16, BM_CopyFloor / 16);

} // namespace
