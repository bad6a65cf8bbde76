#pragma once
// The mail databases are small SQLite files opened for one operation and
// closed again before it returns; nothing holds a connection between
// operations. Every failure (missing file, locked file, a file that is not a
// database, a table that is not there) surfaces as one SqliteError naming
// the file, so the operation that ran into it can report it in one place.
#include <QByteArray>
#include <QString>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <memory>
#include <stdexcept>

namespace mirel {

/// A database failure, with the file it happened on.
class SqliteError : public std::runtime_error {
public:
    SqliteError(QString file, QString reason)
        : std::runtime_error((file + QStringLiteral(": ") + reason).toStdString()),
          m_file(std::move(file)), m_reason(std::move(reason)) {}
    const QString& file() const { return m_file; }
    const QString& reason() const { return m_reason; }

private:
    QString m_file;
    QString m_reason;
};

/// A query read row by row through SQLite's C interface, for lists of
/// thousands of rows where a column object per value shows. Values read as
/// SqliteDb::columnBytes and Column::getInt read them; failures throw the
/// same SQLite::Exception a Statement throws.
class SqliteRows {
public:
    SqliteRows(SQLite::Database& db, const std::string& sql);
    ~SqliteRows();
    SqliteRows(const SqliteRows&) = delete;
    SqliteRows& operator=(const SqliteRows&) = delete;

    /// Steps to the next row; false after the last.
    bool next();
    int columnCount() const;
    int integer(int column) const;
    /// Raw bytes whatever the stored type; NULL reads as empty.
    QByteArray bytes(int column) const;
    /// The same bytes where SQLite keeps them, valid until the next step.
    QByteArrayView view(int column) const;

private:
    sqlite3* m_db;
    sqlite3_stmt* m_st = nullptr;
};

/// One open connection to an existing database file, for the length of one
/// operation. Byte strings go in and come out as BLOBs, unchanged.
class SqliteDb {
public:
    /// Opens an existing file read-write; waits up to busyTimeoutMs for a
    /// lock held by another connection.
    SqliteDb(const QString& path, int busyTimeoutMs);
    /// Creates the file (it must not hold a database yet) and runs schemaSql.
    static void create(const QString& path, const char* schemaSql);

    const QString& path() const { return m_path; }
    SQLite::Database& db() { return *m_db; }

    /// Runs fn inside one transaction (a read-only one unless write); any
    /// exception rolls it back and leaves as SqliteError.
    template <typename Fn>
    auto run(Fn&& fn, bool write = true) -> decltype(fn(std::declval<SQLite::Database&>()));

    /// Not copied (copy false), the bytes must stay as they are until the
    /// statement has run: a received session binds some hundred megabytes.
    static void bindBytes(SQLite::Statement& st, int index, const QByteArray& bytes,
                          bool copy = true);
    /// NULL stays NULL: the caller tells an unassigned field from an empty one.
    static void bindBytesOrNull(SQLite::Statement& st, int index, const QByteArray& bytes,
                                bool copy = true);
    static QByteArray columnBytes(SQLite::Statement& st, int index);

    [[noreturn]] void fail(const std::exception& e) const;

private:
    QString m_path;
    std::unique_ptr<SQLite::Database> m_db;
};

template <typename Fn>
auto SqliteDb::run(Fn&& fn, bool write) -> decltype(fn(std::declval<SQLite::Database&>())) {
    try {
        // A writer takes the lock up front, so a busy file is waited for
        // before anything is done rather than failing halfway.
        m_db->exec(write ? "BEGIN IMMEDIATE" : "BEGIN");
        try {
            if constexpr (std::is_void_v<decltype(fn(*m_db))>) {
                fn(*m_db);
                m_db->exec("COMMIT");
            } else {
                auto result = fn(*m_db);
                m_db->exec("COMMIT");
                return result;
            }
        } catch (...) {
            try {
                m_db->exec("ROLLBACK");
            } catch (...) {
            }
            throw;
        }
    } catch (const SqliteError&) {
        throw;
    } catch (const std::exception& e) {
        fail(e);
    }
}

} // namespace mirel
