// Driver for fuzz targets in ordinary builds: replays every file of a corpus
// folder, then a fixed number of seeded mutations of those files (byte
// flips, insertions of INI/skin punctuation, truncations, splices). It makes
// the fuzz targets part of every test run; real fuzzing uses libFuzzer
// (make fuzz). Every input has a time bound (--max-ms, 2000 by default):
// work that grows faster than its input fails here as a slow input, saved
// to slow-input in the working folder so it can become a corpus row.
#include <QByteArray>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

qint64 maxMs = 2000;

void run(const QByteArray& b) {
    QElapsedTimer t;
    t.start();
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(b.constData()), size_t(b.size()));
    if (t.elapsed() > maxMs) {
        QFile slow(QStringLiteral("slow-input"));
        if (slow.open(QIODevice::WriteOnly))
            slow.write(b);
        std::fprintf(stderr, "an input of %lld bytes took %lld ms (saved as slow-input)\n",
                     qlonglong(b.size()), qlonglong(t.elapsed()));
        std::abort();
    }
}

QByteArray mutate(const QByteArray& in, const std::vector<QByteArray>& all, std::mt19937& rng) {
    static const char kTokens[] = "[]=;,\r\n\0\"'\\ 0123456789-%";
    QByteArray b = in;
    const int steps = 1 + int(rng() % 8);
    for (int s = 0; s < steps; ++s) {
        const qsizetype pos = b.isEmpty() ? 0 : qsizetype(rng() % size_t(b.size()));
        switch (rng() % 6) {
        case 0: if (!b.isEmpty()) b[pos] = char(rng()); break;
        case 1: b.insert(pos, kTokens[rng() % (sizeof kTokens - 1)]); break;
        case 2: b.truncate(pos); break;
        case 3: b.remove(pos, qsizetype(rng() % 16)); break;
        case 4: {
            const QByteArray& o = all[rng() % all.size()];
            if (!o.isEmpty()) b.insert(pos, o.mid(qsizetype(rng() % size_t(o.size())), 64));
            break;
        }
        case 5: b.insert(pos, QByteArray(qsizetype(rng() % 300), char(rng()))); break;
        }
    }
    return b;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s CORPUS_DIR [--mutations=N]\n", argv[0]);
        return 2;
    }
    int mutations = 1000;
    for (int i = 2; i < argc; ++i)
        if (std::strncmp(argv[i], "--mutations=", 12) == 0)
            mutations = std::atoi(argv[i] + 12);
        else if (std::strncmp(argv[i], "--max-ms=", 9) == 0)
            maxMs = std::atoll(argv[i] + 9);
    std::vector<QByteArray> corpus{QByteArray()};
    const QDir dir(QString::fromLocal8Bit(argv[1]));
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name)) {
        QFile f(dir.filePath(name));
        if (f.open(QIODevice::ReadOnly))
            corpus.push_back(f.readAll());
    }
    for (const QByteArray& b : corpus)
        run(b);
    std::mt19937 rng(20261122);
    for (int i = 0; i < mutations; ++i)
        run(mutate(corpus[rng() % corpus.size()], corpus, rng));
    std::printf("%zu corpus files and %d mutations ran without a crash\n", corpus.size(),
                mutations);
    return 0;
}
