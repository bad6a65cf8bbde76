// Receiving mail into the store: 10,000 messages of mixed size (plain
// notes, alternatives, messages with attachments of a few to a hundred
// kilobytes) stored into folder "0" on the disk, grouped as a receiving
// session groups them (a commit and a record sync per group: per second or
// per ReceivedMessageStore::kGroupMessages), beside GMime
// parsing the same messages without storing (the floor); then 1,000 and
// 50,000 of them (the mix repeated under new IDs) to show the cost per
// message does not grow with the count. Then filling the list of a
// 10,000-message folder, beside a bare SQLite scan of its index (the floor).
#include "BenchMain.h"
#include "mail/mime/ReceivedMessageStore.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"
#include "platform/GMimeRuntime.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <array>
#include <gmime/gmime.h>
#include <memory>
#include <vector>

using namespace mirel;

namespace {

constexpr int kMessages = 10000;

using bench::NullSink;

QByteArray words(QRandomGenerator& rng, int bytes) {
    static const char* const kWords[] = {"mail", "store",    "the",  "folder",     "message", "of",
                                         "and",  "received", "list", "attachment", "Mirel"};
    QByteArray out;
    out.reserve(bytes + 80);
    int column = 0;
    while (out.size() < bytes) {
        const QByteArray w = kWords[rng.bounded(int(std::size(kWords)))];
        out += w + ' ';
        column += int(w.size()) + 1;
        if (column > 70) {
            out += "\r\n";
            column = 0;
        }
    }
    return out + "\r\n";
}

QByteArray base64Lines(QRandomGenerator& rng, int bytes) {
    QByteArray data(bytes, Qt::Uninitialized);
    for (char& c : data)
        c = char(rng.bounded(256));
    const QByteArray b64 = data.toBase64();
    QByteArray out;
    for (qsizetype i = 0; i < b64.size(); i += 76)
        out += b64.mid(i, 76) + "\r\n";
    return out;
}

// Half plain notes of 0.5-4 KB, a quarter alternatives, a fifth with one
// attachment of 5-30 KB, the rest with two attachments of 60-120 KB.
QByteArray makeMessage(QRandomGenerator& rng, int n) {
    QByteArray head = "From: \"Sender " + QByteArray::number(n % 97) +
                      "\" <s@example.org>\r\nTo: me@example.net\r\nSubject: Message number " +
                      QByteArray::number(n) + "\r\nDate: Sun, 22 Nov 2026 10:00:00 +0100\r\n" +
                      "Message-ID: <" + QByteArray::number(n) + ".bench@example.org>\r\n" +
                      "MIME-Version: 1.0\r\n";
    const int kind = rng.bounded(100);
    if (kind < 50)
        return head + "Content-Type: text/plain\r\n\r\n" + words(rng, rng.bounded(500, 4000));
    const QByteArray alt = "Content-Type: multipart/alternative; boundary=\"alt\"\r\n\r\n--alt\r\n"
                           "Content-Type: text/plain\r\n\r\n" +
                           words(rng, rng.bounded(500, 3000)) +
                           "--alt\r\nContent-Type: text/html\r\n\r\n<p>" +
                           words(rng, rng.bounded(1000, 5000)) + "</p>\r\n--alt--\r\n";
    if (kind < 75)
        return head + alt;
    QByteArray mixed =
        head + "Content-Type: multipart/mixed; boundary=\"mix\"\r\n\r\n--mix\r\n" + alt;
    const int count = kind < 96 ? 1 : 2;
    for (int i = 0; i < count; ++i)
        mixed +=
            "--mix\r\nContent-Type: application/octet-stream; name=\"file" + QByteArray::number(i) +
            ".bin\"\r\nContent-Transfer-Encoding: base64\r\n\r\n" +
            base64Lines(rng, kind < 96 ? rng.bounded(5000, 30000) : rng.bounded(60000, 120000));
    return mixed + "--mix--\r\n";
}

const std::vector<QByteArray>& messages() {
    static const std::vector<QByteArray> all = [] {
        QRandomGenerator rng(20261122);
        std::vector<QByteArray> m;
        m.reserve(kMessages);
        for (int i = 0; i < kMessages; ++i)
            m.push_back(makeMessage(rng, i));
        return m;
    }();
    return all;
}

QString memoryTemp() {
    return QDir("/dev/shm").exists() ? QStringLiteral("/dev/shm/mirel-bench-XXXXXX")
                                     : QDir::tempPath() + "/mirel-bench-XXXXXX";
}

// A message of the mix under a new ID. Only the ID is sought, not every
// occurrence in the message: the bench's own work stays out of the rate.
QByteArray renumbered(const QByteArray& m, int n) {
    const qsizetype at = m.indexOf(".bench@");
    return m.first(at) + '.' + QByteArray::number(n) + m.sliced(at + 6);
}

struct Store {
    explicit Store(const QString& pattern) : dir(pattern) { store.MailStoreStartup(ini); }
    QTemporaryDir dir;
    SystemClock clock;
    NullSink sink;
    SettingsStore settings{dir.path() + "/config"};
    IniHelpers ini{sink, settings};
    MailStore store{dir.path(), clock, sink};
    DuplicateDetector duplicates{store.incomingRecordPath()};
    ReceivedMessageStore received{store, duplicates};
    int stored = 0;

    // Beyond the mix, its messages again under new IDs. Committed by the
    // rule a receiving session follows.
    void fill(int count) {
        received.setGrouped(true);
        QElapsedTimer sinceCommit;
        sinceCommit.start();
        int group = 0;
        for (int i = 0; i < count; ++i) {
            const QByteArray& m = messages()[size_t(i % kMessages)];
            stored += received.StoreReceivedMessage(i < kMessages ? m : renumbered(m, i), "0");
            if (++group >= ReceivedMessageStore::kGroupMessages ||
                sinceCommit.elapsed() > ReceivedMessageStore::kGroupMs) {
                received.commit();
                group = 0;
                sinceCommit.start();
            }
        }
        received.commit();
    }
};

QString diskTemp() {
    return QDir::tempPath() + "/mirel-bench-XXXXXX";
}

Store& filledStore() {
    static Store s(memoryTemp());
    if (s.stored == 0)
        s.fill(kMessages);
    return s;
}

// GMime's own parse of one message, handed to f before it is freed: the
// work every floor below starts from.
template <typename F> void parseWithGMime(const QByteArray& m, F&& f) {
    GMimeStream* stream = g_mime_stream_mem_new_with_buffer(m.constData(), size_t(m.size()));
    GMimeParser* parser = g_mime_parser_new_with_stream(stream);
    GMimeMessage* msg = g_mime_parser_construct_message(parser, nullptr);
    f(msg);
    g_object_unref(msg);
    g_object_unref(parser);
    g_object_unref(stream);
}

void BM_GMimeParseFloor(benchmark::State& state) {
    GMimeRuntime::ensure();
    messages(); // made once, outside the timing
    for (auto _ : state)
        for (const QByteArray& m : messages())
            parseWithGMime(m, [](GMimeMessage* msg) { benchmark::DoNotOptimize(msg); });
    state.counters["messages/s"] = benchmark::Counter(kMessages, benchmark::Counter::kIsRate);
}
BENCHMARK(BM_GMimeParseFloor)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_MimeMessageParse(benchmark::State& state) {
    messages();
    for (auto _ : state)
        for (const QByteArray& m : messages())
            benchmark::DoNotOptimize(MimeMessage::parse(m));
    state.counters["messages/s"] = benchmark::Counter(kMessages, benchmark::Counter::kIsRate);
}
BENCHMARK(BM_MimeMessageParse)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_MimeMessageParse, BM_GMimeParseFloor);

// count messages stored into a new folder on the disk. Removing the
// folder's files is not storing: it happens untimed.
void storeInto(benchmark::State& state, int count) {
    messages();
    std::unique_ptr<Store> s;
    for (auto _ : state) {
        state.PauseTiming();
        s = std::make_unique<Store>(diskTemp());
        state.ResumeTiming();
        s->fill(count);
    }
    if (s->stored != count)
        state.SkipWithError("not every message was stored");
    state.counters["messages/s"] = benchmark::Counter(count, benchmark::Counter::kIsRate);
}

void BM_StoreReceived(benchmark::State& state) {
    storeInto(state, kMessages);
}
BENCHMARK(BM_StoreReceived)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);
MIREL_BOUND(BM_StoreReceived, BM_GMimeParseFloor, 2);

// Parses every message with GMime and writes what write(message, bytes,
// insert) binds durably on the same disk, in one table of one file with the
// store's largest page, committed as often as a receiving session commits.
template <typename Write> void durableFloor(benchmark::State& state, Write&& write) {
    GMimeRuntime::ensure();
    messages();
    for (auto _ : state) {
        state.PauseTiming();
        QTemporaryDir dir(diskTemp());
        SQLite::Database db((dir.path() + "/floor.db").toStdString(),
                            SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        db.exec("PRAGMA page_size = 65536; CREATE TABLE b (id INTEGER PRIMARY KEY, data BLOB)");
        state.ResumeTiming();
        SQLite::Statement insert(db, "INSERT INTO b (data) VALUES (?)");
        QElapsedTimer sinceCommit;
        sinceCommit.start();
        db.exec("BEGIN");
        for (const QByteArray& m : messages()) {
            parseWithGMime(m, [&](GMimeMessage* msg) { write(msg, m, insert); });
            if (sinceCommit.elapsed() > ReceivedMessageStore::kGroupMs) {
                db.exec("COMMIT; BEGIN");
                sinceCommit.start();
            }
        }
        db.exec("COMMIT");
    }
    state.counters["messages/s"] = benchmark::Counter(kMessages, benchmark::Counter::kIsRate);
}

// A second floor beside the parse: parsing the same messages and putting
// their bytes durably on the same disk, one BLOB per message. Storing
// cannot do less than read the messages and write them out; the parse
// alone leaves out the disk, which on this machine costs more than the parse.
void BM_ParseAndWriteFloor(benchmark::State& state) {
    durableFloor(state, [](GMimeMessage*, const QByteArray& m, SQLite::Statement& insert) {
        insert.reset();
        insert.bind(1, m.constData(), int(m.size()));
        insert.exec();
    });
}
BENCHMARK(BM_ParseAndWriteFloor)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);
MIREL_BOUND(BM_StoreReceived, BM_ParseAndWriteFloor, 2);
// How much of twice the parse the disk alone takes, in the same run.
MIREL_FLOOR(BM_ParseAndWriteFloor, BM_GMimeParseFloor);

// A third floor: what any store built on GMime and SQLite does at least.
// Each part is decoded by its transfer encoding (GMime's own way, through
// the part's data wrapper) and written as a BLOB of its own. Storing does
// more on top: three files committed together, an index row and a message
// row, the record of received messages. The parse-and-write floor above
// writes the messages still encoded and so leaves the decoding out.
void BM_ParseDecodeWriteFloor(benchmark::State& state) {
    const auto writePart = [](GMimeObject*, GMimeObject* part, gpointer st) {
        if (!GMIME_IS_PART(part))
            return;
        GMimeDataWrapper* content = g_mime_part_get_content(GMIME_PART(part));
        GMimeStream* decoded = g_mime_stream_mem_new();
        if (content)
            g_mime_data_wrapper_write_to_stream(content, decoded);
        const GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(decoded));
        auto& insert = *static_cast<SQLite::Statement*>(st);
        insert.reset();
        insert.bindNoCopy(1, bytes->data, int(bytes->len));
        insert.exec();
        g_object_unref(decoded);
    };
    durableFloor(state, [&](GMimeMessage* msg, const QByteArray&, SQLite::Statement& insert) {
        g_mime_message_foreach(msg, writePart, &insert);
    });
}
BENCHMARK(BM_ParseDecodeWriteFloor)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_StoreReceived, BM_ParseDecodeWriteFloor);
MIREL_FLOOR(BM_ParseDecodeWriteFloor, BM_GMimeParseFloor);

// Linear: the same rate for 1,000 as for 50,000 messages.
void BM_StoreReceivedCount(benchmark::State& state) {
    storeInto(state, int(state.range(0)));
}
BENCHMARK(BM_StoreReceivedCount)
    ->Arg(1000)
    ->Arg(50000)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void BM_IndexScanFloor(benchmark::State& state) {
    Store& s = filledStore();
    for (auto _ : state) {
        SQLite::Database db(s.store.databasePath("0", "index.mdb").toStdString());
        SQLite::Statement st(db, R"(SELECT * FROM "Index" ORDER BY "RealDate" DESC, "ID" DESC)");
        int rows = 0;
        while (st.executeStep())
            ++rows;
        benchmark::DoNotOptimize(rows);
    }
}
BENCHMARK(BM_IndexScanFloor)->Unit(benchmark::kMillisecond);

void BM_FillMessageIndexList(benchmark::State& state) {
    Store& s = filledStore();
    for (auto _ : state) {
        const auto rows = s.store.FillMessageIndexList("0");
        if (rows.size() != size_t(kMessages))
            state.SkipWithError("list is incomplete");
        benchmark::DoNotOptimize(rows.data());
    }
}
BENCHMARK(BM_FillMessageIndexList)->Unit(benchmark::kMillisecond);
MIREL_BOUND(BM_FillMessageIndexList, BM_IndexScanFloor, 2);

// Beside the bare scan: the same scan keeping each row's four texts as byte
// arrays, which any list made of the rows holds and the bare scan leaves
// out (an allocation per text, ten thousand rows).
void BM_IndexBytesFloor(benchmark::State& state) {
    Store& s = filledStore();
    for (auto _ : state) {
        SQLite::Database db(s.store.databasePath("0", "index.mdb").toStdString());
        SQLite::Statement st(db, R"(SELECT * FROM "Index" ORDER BY "RealDate" DESC, "ID" DESC)");
        std::vector<std::array<QByteArray, 4>> rows;
        while (st.executeStep()) {
            std::array<QByteArray, 4> texts;
            for (int c = 1; c <= 4; ++c) {
                const SQLite::Column v = st.getColumn(c);
                texts[size_t(c - 1)] =
                    QByteArray(static_cast<const char*>(v.getBlob()), v.getBytes());
            }
            rows.push_back(std::move(texts));
        }
        benchmark::DoNotOptimize(rows.data());
    }
}
BENCHMARK(BM_IndexBytesFloor)->Unit(benchmark::kMillisecond);
MIREL_FLOOR(BM_FillMessageIndexList, BM_IndexBytesFloor);

} // namespace
