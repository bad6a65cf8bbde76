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

BodyCharsets BodyCharsets::read(SQLite::Database& d, const std::string& schema, qint32 id) {
    BodyCharsets out;
    // The table appears with the first message that declares a charset.
    SqliteRows table(d, "SELECT 1 FROM " + schema +
                            R"(.sqlite_master WHERE type = 'table' AND name = 'BodyCharset')");
    if (!table.next())
        return out;
    SqliteRows st(d, R"(SELECT "Text", "Html" FROM )" + schema + R"(."BodyCharset" WHERE "ID" = )" +
                         std::to_string(id));
    if (st.next()) {
        out.text = st.bytes(0);
        out.html = st.bytes(1);
    }
    return out;
}

BodyCharsets BodyCharsets::read(const MailStore& store, QByteArrayView folder, qint32 id) {
    BodyCharsets out;
    try {
        SqliteDb db(dataFile(store, folder), kBusyMs);
        db.run([&](SQLite::Database& d) { out = read(d, "main", id); }, false);
    } catch (const SqliteError&) {
    }
    return out;
}

} // namespace mirel
