// The e-mail screen's work on a folder of 10,000 messages: building every
// visible row from the index (the list a folder fills), and opening one
// message (reading its rows, marking it read, building and writing its
// page). Floors: a bare scan of the same index table, and reading the one
// message row.
#include "BenchMain.h"
#include "mail/store/MailStore.h"
#include "mail/view/MessageListLine.h"
#include "mail/view/MessageView.h"
#include "platform/SettingsStore.h"
#include "platform/SqliteDb.h"
#include "settings/IniHelpers.h"

#include <QFile>
#include <QTemporaryDir>
#include <SQLiteCpp/SQLiteCpp.h>
#include <cstdio>
#include <fcntl.h>
#include <map>
#include <memory>

using namespace mirel;

namespace {

constexpr int kMessages = 10000;

struct NullSink final : MessageSink {
    void showMessage(const QString&, const QString&, Icon) override {}
    bool askYesNo(const QString&, const QString&) override { return false; }
};

struct World {
    QTemporaryDir dir;
    NullSink sink;
    SettingsStore settings{dir.path() + QStringLiteral("/config")};
    IniHelpers ini{sink, settings};
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(12, 0))};
    MailStore store{dir.path(), clock, sink};
    qint32 htmlMessage = 0;

    explicit World(int messages = kMessages) {
        store.MailStoreStartup(ini);
        // One transaction for the whole folder: storing message by message
        // would time the store, not the list.
        SqliteDb db(store.databasePath("0", QStringLiteral("index.mdb")), 3000);
        db.run([messages](SQLite::Database& d) {
            SQLite::Statement st(d, R"(INSERT INTO "Index" ("Subject", "From", "Date", "To",
                "Attachments", "Readed", "RealDate") VALUES (?, ?, ?, ?, ?, ?, ?))");
            for (int i = 0; i < messages; ++i) {
                const QByteArray n = QByteArray::number(i);
                SqliteDb::bindBytes(
                    st, 1, i % 3 ? "Weekly report " + n : "=?utf-8?q?Gr=C3=BC=C3=9Fe_" + n + "?=");
                SqliteDb::bindBytes(st, 2, "\"Sender " + n + "\" <s" + n + "@example.org>");
                SqliteDb::bindBytes(st, 3, "Sun, 22 Nov 2026 10:00:00 +0100");
                SqliteDb::bindBytes(st, 4, "me@example.org");
                st.bind(5, i % 7 == 0 ? 1 : 0);
                st.bind(6, i % 2);
                st.bind(7, QDateTime(QDate(2026, 1, 1), QTime(0, 0))
                               .addSecs(i * 60)
                               .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))
                               .toStdString());
                st.exec();
                st.reset();
            }
        });
        MessageRow bodies;
        QByteArray html = "<html><head><title>t</title></head><body bgcolor=#ffffff>";
        for (int i = 0; i < 2000; ++i)
            html += "<p><font color=#000000>Paragraph " + QByteArray::number(i) +
                    "</font> <a href=\"http://example.org/\">link</a></p>\r\n";
        bodies.html = html + "</body></html>";
        bodies.text = "Plain copy of the page\r\n";
        bodies.headers = "From: a@example.org\r\nContent-Type: multipart/alternative\r\n";
        htmlMessage = *store.createMessage(
            "0", NewIndexFields{QByteArray("s"), QByteArray("f"), QByteArray("d"), QByteArray("t")},
            bodies, {{"name=\"report.pdf\"", "%PDF"}});
    }
};

World& world() {
    static World w;
    return w;
}

void scanIndex(benchmark::State& state, World& w) {
    for (auto _ : state) {
        SqliteDb db(w.store.databasePath("0", QStringLiteral("index.mdb")), 3000);
        qsizetype bytes = 0;
        db.run(
            [&](SQLite::Database& d) {
                SQLite::Statement st(d, R"(SELECT * FROM "Index" ORDER BY "RealDate" DESC)");
                while (st.executeStep())
                    for (int c = 1; c <= 4; ++c)
                        bytes += SqliteDb::columnBytes(st, c).size();
            },
            false);
        benchmark::DoNotOptimize(bytes);
    }
}

void fillList(benchmark::State& state, World& w) {
    for (auto _ : state) {
        QList<QStringList> rows;
        for (const QByteArray& line : w.store.FillMessageListLines("0"))
            rows.append(MessageListLine::columnsOf(line));
        benchmark::DoNotOptimize(rows);
    }
}

void BM_IndexScanFloor(benchmark::State& state) {
    scanIndex(state, world());
}
BENCHMARK(BM_IndexScanFloor)->Unit(benchmark::kMillisecond);

void BM_FillMessageList(benchmark::State& state) {
    fillList(state, world());
}
BENCHMARK(BM_FillMessageList)->Unit(benchmark::kMillisecond);
MIREL_BOUND(BM_FillMessageList, BM_IndexScanFloor, 2);

// What any list that shows text needs besides the scan: each row's four
// texts as QStrings in a list of its own. The screen's list is made of
// those, so this floor holds what the bare scan leaves out.
void BM_IndexTextFloor(benchmark::State& state) {
    World& w = world();
    for (auto _ : state) {
        SqliteDb db(w.store.databasePath("0", QStringLiteral("index.mdb")), 3000);
        QList<QStringList> rows;
        db.run(
            [&](SQLite::Database& d) {
                SQLite::Statement st(d, R"(SELECT * FROM "Index" ORDER BY "RealDate" DESC)");
                while (st.executeStep()) {
                    QStringList row;
                    for (int c = 1; c <= 4; ++c)
                        row.append(QString::fromLatin1(SqliteDb::columnBytes(st, c)));
                    rows.append(row);
                }
            },
            false);
        benchmark::DoNotOptimize(rows);
    }
}
BENCHMARK(BM_IndexTextFloor)->Unit(benchmark::kMillisecond);
MIREL_BOUND(BM_FillMessageList, BM_IndexTextFloor, 2);

// Growth: the list of 1,000, 10,000 and 50,000 messages. The cost per
// message (items per second) stays flat when filling is linear.
World& sizedWorld(int messages) {
    static std::map<int, std::unique_ptr<World>> worlds;
    auto& w = worlds[messages];
    if (!w)
        w = std::make_unique<World>(messages);
    return *w;
}

void BM_ListSweep(benchmark::State& state, int messages) {
    fillList(state, sizedWorld(messages));
    state.SetItemsProcessed(state.iterations() * messages);
}

void BM_ListSweepScanFloor(benchmark::State& state, int messages) {
    scanIndex(state, sizedWorld(messages));
    state.SetItemsProcessed(state.iterations() * messages);
}

BENCHMARK_CAPTURE(BM_ListSweep, 1k, 1000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ListSweepScanFloor, 1k, 1000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ListSweep, 10k, 10000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ListSweepScanFloor, 10k, 10000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ListSweep, 50k, 50000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ListSweepScanFloor, 50k, 50000)->Unit(benchmark::kMillisecond);
const int kSweepFloors[] = {bench::registerFloor("BM_ListSweep/1k", "BM_ListSweepScanFloor/1k"),
                            bench::registerFloor("BM_ListSweep/10k", "BM_ListSweepScanFloor/10k"),
                            bench::registerFloor("BM_ListSweep/50k", "BM_ListSweepScanFloor/50k")};

void BM_ReadMessageRowFloor(benchmark::State& state) {
    World& w = world();
    for (auto _ : state)
        benchmark::DoNotOptimize(w.store.readMessageRow("0", w.htmlMessage));
}
BENCHMARK(BM_ReadMessageRowFloor)->Unit(benchmark::kMicrosecond);

void BM_OpenMessage(benchmark::State& state) {
    World& w = world();
    MessageView view(w.store);
    for (auto _ : state)
        benchmark::DoNotOptimize(view.ShowMessage("0", w.htmlMessage).page.size());
}
BENCHMARK(BM_OpenMessage)->Unit(benchmark::kMicrosecond);
MIREL_BOUND(BM_OpenMessage, BM_ReadMessageRowFloor, 3);

// What opening a message cannot do without, in bare SQLite and file calls:
// its rows in the three database files of the folder (message with body
// charsets, index, attachments) and a page of the same size put in place
// by a rename. Reading the one message row leaves out two of the three
// files and the page, which the view needs on every open.
void BM_OpenMessageWorkFloor(benchmark::State& state) {
    World& w = world();
    const auto row = [&](const char* file, const char* sql) {
        SqliteDb db(w.store.databasePath("0", QString::fromLatin1(file)), 3000);
        qsizetype bytes = 0;
        db.run(
            [&](SQLite::Database& d) {
                SQLite::Statement st(d, sql);
                st.bind(1, w.htmlMessage);
                while (st.executeStep())
                    for (int c = 0; c < st.getColumnCount(); ++c)
                        bytes += SqliteDb::columnBytes(st, c).size();
                if (d.tableExists("BodyCharset")) {
                    SQLite::Statement cs(d, R"(SELECT * FROM "BodyCharset" WHERE "ID" = ?)");
                    cs.bind(1, w.htmlMessage);
                    cs.executeStep();
                }
            },
            false);
        return bytes;
    };
    const QByteArray page = w.store.readMessageRow("0", w.htmlMessage)->html;
    const QByteArray target = QFile::encodeName(w.dir.path() + QStringLiteral("/floor.html"));
    const QByteArray part = target + ".part";
    for (auto _ : state) {
        qsizetype bytes = row("data.mdb", R"(SELECT * FROM "Message" WHERE "ID" = ?)");
        bytes += row("index.mdb", R"(SELECT * FROM "Index" WHERE "ID" = ?)");
        bytes += row("attachments.mdb", R"(SELECT * FROM "Attachments" WHERE "ID" = ?)");
        QFile f(QString::fromLocal8Bit(part));
        if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            f.write(page);
        f.close();
        std::rename(part.constData(), target.constData());
        benchmark::DoNotOptimize(bytes);
    }
}
BENCHMARK(BM_OpenMessageWorkFloor)->Unit(benchmark::kMicrosecond);
MIREL_BOUND(BM_OpenMessage, BM_OpenMessageWorkFloor, 3);

// The same work done the cheapest way the files allow, kept beside the
// floor above rather than replacing it: one connection with the other two
// files attached (each file's schema is still read once), and the page
// swapped with the old one by name, so the old one is dropped unwritten
// instead of the new one being pushed to the disk by a rename over it.
void BM_OpenMessageOneConnectionFloor(benchmark::State& state) {
    World& w = world();
    const QByteArray page = w.store.readMessageRow("0", w.htmlMessage)->html;
    const QByteArray target = QFile::encodeName(w.dir.path() + QStringLiteral("/floor.html"));
    const QByteArray part = target + ".part";
    const auto attach = [&](SqliteDb& db, const char* file, const char* alias) {
        SQLite::Statement st(db.db(), std::string("ATTACH DATABASE ? AS ") + alias);
        st.bind(
            1,
            QFile::encodeName(w.store.databasePath("0", QString::fromLatin1(file))).toStdString());
        st.exec();
    };
    for (auto _ : state) {
        SqliteDb db(w.store.databasePath("0", QStringLiteral("index.mdb")), 3000);
        attach(db, "data.mdb", "data");
        attach(db, "attachments.mdb", "att");
        qsizetype bytes = 0;
        db.run(
            [&](SQLite::Database& d) {
                for (const char* sql :
                     {R"(SELECT * FROM main."Index" WHERE "ID" = ?)",
                      R"(SELECT * FROM data."Message" WHERE "ID" = ?)",
                      R"(SELECT "Filename" FROM att."Attachments" WHERE "ID" = ?)"}) {
                    SQLite::Statement st(d, sql);
                    st.bind(1, w.htmlMessage);
                    while (st.executeStep())
                        for (int c = 0; c < st.getColumnCount(); ++c)
                            bytes += SqliteDb::columnBytes(st, c).size();
                }
            },
            false);
        QFile f(QString::fromLocal8Bit(part));
        if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            f.write(page);
        f.close();
        if (::renameat2(AT_FDCWD, part.constData(), AT_FDCWD, target.constData(),
                        RENAME_EXCHANGE) == 0)
            std::remove(part.constData());
        else
            std::rename(part.constData(), target.constData());
        benchmark::DoNotOptimize(bytes);
    }
}
BENCHMARK(BM_OpenMessageOneConnectionFloor)->Unit(benchmark::kMicrosecond);
MIREL_BOUND(BM_OpenMessage, BM_OpenMessageOneConnectionFloor, 3);

} // namespace
