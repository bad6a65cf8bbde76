#include "platform/SqliteDb.h"
#include "platform/PrivateFiles.h"

#include <QFile>
#include <QFileInfo>
#include <SQLiteCpp/Transaction.h>
#include <limits>
#include <sqlite3.h>
#include <stdexcept>
#include <string>

namespace mirel {

SqliteDb::SqliteDb(const QString& path, int busyTimeoutMs) : m_path(path) {
    // SQLite would create a missing file on open; a missing database is a
    // failure of the operation that needs it, not a new empty file.
    if (!QFileInfo::exists(path))
        throw SqliteError(path, QStringLiteral("the file does not exist"));
    try {
        // A connection lives for one operation on one thread, so SQLite need
        // not lock it on every call (three calls per value read).
        m_db = std::make_unique<SQLite::Database>(QFile::encodeName(path).toStdString(),
                                                  SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX,
                                                  busyTimeoutMs);
    } catch (const std::exception& e) {
        fail(e);
    }
}

void SqliteDb::create(const QString& path, const char* schemaSql) {
    // Made private before SQLite opens it; its journals take the same mode.
    if (!QFileInfo::exists(path)) {
        QFile f(path);
        f.open(QIODevice::WriteOnly | QIODevice::NewOnly, kPrivateFile);
    }
    try {
        SQLite::Database db(QFile::encodeName(path).toStdString(),
                            SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        SQLite::Transaction tx(db);
        db.exec(schemaSql);
        tx.commit();
    } catch (const std::exception& e) {
        throw SqliteError(path, QString::fromUtf8(e.what()));
    }
}

void SqliteDb::bindBytes(SQLite::Statement& st, int index, const QByteArray& bytes, bool copy) {
    // Refused here, before the size is narrowed to an int: a part of more
    // than 2 GiB would otherwise be stored cut short without a word. (SQLite
    // itself refuses what is above its own, lower, limit.)
    if (bytes.size() > std::numeric_limits<int>::max())
        throw std::length_error("a value of " + std::to_string(bytes.size()) +
                                " bytes is larger than the mail store holds");
    // A zero-length BLOB needs a non-null pointer, or SQLite stores NULL.
    static const char kEmpty = 0;
    const void* data = bytes.isEmpty() ? static_cast<const void*>(&kEmpty) : bytes.constData();
    if (copy)
        st.bind(index, data, int(bytes.size()));
    else
        st.bindNoCopy(index, data, int(bytes.size()));
}

void SqliteDb::bindBytesOrNull(SQLite::Statement& st, int index, const QByteArray& bytes,
                               bool copy) {
    if (bytes.isEmpty())
        st.bind(index);
    else
        bindBytes(st, index, bytes, copy);
}

QByteArray SqliteDb::columnBytes(SQLite::Statement& st, int index) {
    SQLite::Column c = st.getColumn(index);
    if (c.isNull())
        return {};
    // Raw bytes whatever the stored type: text written by another program
    // reads back as its bytes.
    const void* blob = c.getBlob();
    return QByteArray(static_cast<const char*>(blob), c.getBytes());
}

SqliteRows::SqliteRows(SQLite::Database& db, const std::string& sql) : m_db(db.getHandle()) {
    if (const int rc = sqlite3_prepare_v2(m_db, sql.c_str(), int(sql.size()), &m_st, nullptr);
        rc != SQLITE_OK)
        throw SQLite::Exception(m_db, rc);
}

SqliteRows::~SqliteRows() {
    sqlite3_finalize(m_st);
}

bool SqliteRows::next() {
    const int rc = sqlite3_step(m_st);
    if (rc == SQLITE_ROW)
        return true;
    if (rc == SQLITE_DONE)
        return false;
    throw SQLite::Exception(m_db, rc);
}

int SqliteRows::columnCount() const {
    return sqlite3_column_count(m_st);
}

int SqliteRows::integer(int column) const {
    return sqlite3_column_int(m_st, column);
}

QByteArray SqliteRows::bytes(int column) const {
    return view(column).toByteArray();
}

QByteArrayView SqliteRows::view(int column) const {
    // The pointer first, then the size, as SQLite asks; NULL gives no
    // pointer and no bytes.
    const void* blob = sqlite3_column_blob(m_st, column);
    return QByteArrayView(static_cast<const char*>(blob), sqlite3_column_bytes(m_st, column));
}

void SqliteDb::fail(const std::exception& e) const {
    throw SqliteError(m_path, QString::fromUtf8(e.what()));
}

} // namespace mirel
