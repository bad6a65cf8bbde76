// The plain-text alternative is made from the compose document on every
// send. Measured on 1, 4 and 16 MiB of real HTML (the documentation pages
// installed on this machine, joined), beside copying the same bytes (the
// floor): the ratio stays put as the size grows when the cost is linear.
#include "BenchMain.h"
#include "mail/mime/HTML2Text.h"

#include <QDirIterator>
#include <QFile>

#include <map>

#include <emmintrin.h>

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

// A fairer floor beside the copy: one pass that finds every '<', '&' and
// line break, the places where the conversion must stop and decide. Real
// pages have one every dozen bytes or so, and each costs a branch the copy
// never takes; the conversion also looks for each tag's '>'.
void BM_FindMarkupFloor(benchmark::State& state) {
    const QByteArray& doc = document(int(state.range(0)));
    const __m128i lt = _mm_set1_epi8('<'), amp = _mm_set1_epi8('&'), cr = _mm_set1_epi8('\r'),
                  lf = _mm_set1_epi8('\n');
    for (auto _ : state) {
        // Sixteen bytes at a time, then every place found is visited.
        size_t sum = 0;
        for (qsizetype at = 0; at + 16 <= doc.size(); at += 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(doc.data() + at));
            const __m128i hit =
                _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, lt), _mm_cmpeq_epi8(v, amp)),
                             _mm_or_si128(_mm_cmpeq_epi8(v, cr), _mm_cmpeq_epi8(v, lf)));
            for (unsigned bits = unsigned(_mm_movemask_epi8(hit)); bits; bits &= bits - 1)
                sum += size_t(at) + size_t(__builtin_ctz(bits));
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * doc.size());
}
BENCHMARK(BM_FindMarkupFloor)->Arg(1)->Unit(benchmark::kMicrosecond);
MIREL_FLOOR(BM_HTML2Text / 1, BM_FindMarkupFloor / 1);
MIREL_FLOOR(BM_HTML2Text / 4, BM_CopyFloor / 4);
MIREL_FLOOR(BM_HTML2Text / 16, BM_CopyFloor / 16);

} // namespace
