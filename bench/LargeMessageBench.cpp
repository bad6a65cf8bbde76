// Opening a 10 MB message: building its view page (links in a text body; the
// character set, body colours and font colours of an HTML body) must take
// a small multiple of copying the same bytes (the floor), never the square.
#include "BenchMain.h"
#include "mail/view/MessagePage.h"

using namespace mirel;

namespace {

constexpr qsizetype kSize = 10 * 1024 * 1024;

QByteArray filled(const QByteArray& unit) {
    return unit.repeated(kSize / unit.size());
}

const QByteArray& text() {
    static const QByteArray t =
        filled("A line of a long report, see http://example.org/page?id=42 and more.\r\n");
    return t;
}

const QByteArray& html() {
    static const QByteArray h =
        "<html><head><meta charset=utf-8></head><body bgcolor=#ffffff>" +
        filled("<p><font color=#000000>Paragraph</font> <META> <a href=x>link</a></p>\r\n") +
        "</body></html>";
    return h;
}

void BM_CopyLargeMessageFloor(benchmark::State& state) {
    for (auto _ : state) {
        QByteArray copy = text();
        copy.detach();
        benchmark::DoNotOptimize(copy.data());
    }
}
BENCHMARK(BM_CopyLargeMessageFloor)->Unit(benchmark::kMillisecond);

void BM_LargeTextPage(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(MessagePage::build(text(), {}).size());
}
BENCHMARK(BM_LargeTextPage)->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_LargeTextPage, BM_CopyLargeMessageFloor);

void BM_LargeHtmlPage(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(MessagePage::displayCharset(html(), {}));
        benchmark::DoNotOptimize(MessagePage::build({}, html()).size());
    }
}
BENCHMARK(BM_LargeHtmlPage)->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_LargeHtmlPage, BM_CopyLargeMessageFloor);

} // namespace
