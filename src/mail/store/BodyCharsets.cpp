#include "mail/store/BodyCharsets.h"

#include "mail/store/MailStore.h"
#include "platform/SqliteDb.h"

namespace mirel {
namespace {

constexpr int kBusyMs = 3000;

QString dataFile(const MailStore& store, QByteArrayView folder) {
    return store.databasePath(folder, QStringLiteral("data.mdb"));
}

} // namespace

void BodyCharsets::write(SQLite::Database& d, std::unique_ptr<SQLite::Statement>& insert, qint32 id,
                         const BodyCharsets& charsets) {
    if (charsets.empty())
        return;
    if (!insert) {
        d.exec(R"(CREATE TABLE IF NOT EXISTS data."BodyCharset" ("ID" INTEGER PRIMARY KEY NOT NULL,
              "Text" BLOB, "Html" BLOB))");
        insert = std::make_unique<SQLite::Statement>(
            d,
            R"(INSERT OR REPLACE INTO data."BodyCharset" ("ID", "Text", "Html") VALUES (?, ?, ?))");
    }
    SQLite::Statement& st = *insert;
    st.reset();
    st.bind(1, id);
    SqliteDb::bindBytesOrNull(st, 2, charsets.text);
    SqliteDb::bindBytesOrNull(st, 3, charsets.html);
    st.exec();
}

BodyCharsets BodyCharsets::read(const MailStore& store, QByteArrayView folder, qint32 id) {
    BodyCharsets out;
    try {
        SqliteDb db(dataFile(store, folder), kBusyMs);
        db.run(
            [&](SQLite::Database& d) {
                if (!d.tableExists("BodyCharset"))
                    return;
                SQLite::Statement st(d,
                                     R"(SELECT "Text", "Html" FROM "BodyCharset" WHERE "ID" = ?)");
                st.bind(1, id);
                if (st.executeStep()) {
                    out.text = SqliteDb::columnBytes(st, 0);
                    out.html = SqliteDb::columnBytes(st, 1);
                }
            },
            false);
    } catch (const SqliteError&) {
    }
    return out;
}

} // namespace mirel
