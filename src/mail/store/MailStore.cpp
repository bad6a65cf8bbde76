#include "mail/store/MailStore.h"

#include "mail/store/BodyCharsets.h"
#include "platform/PrivateFiles.h"

#include "platform/Cp1252.h"
#include "platform/PathResolver.h"
#include "platform/SqliteDb.h"
#include "settings/IniHelpers.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <limits>

namespace mirel {
namespace {

// The field order, defaults and indexes are the ones every mail folder has
// always had. Text fields are declared with their size but receive BLOBs;
// SQLite keeps a BLOB as it is whatever the column's affinity.
constexpr const char* kIndexSchema =
    R"(CREATE TABLE "Index" ("ID" INTEGER PRIMARY KEY AUTOINCREMENT,
         "Subject" VARCHAR(255), "From" VARCHAR(255), "Date" VARCHAR(255), "To" VARCHAR(255),
         "Attachments" INTEGER DEFAULT 0, "Readed" SMALLINT DEFAULT 0, "RealDate" DATETIME);
       CREATE INDEX "RealDate" ON "Index" ("RealDate");)";
// Bodies and attachments are large values stored as chains of overflow
// pages: bigger pages mean fewer of them to allocate, link and write. Set
// before the table is made, so it holds for files made from now on; files
// made before keep theirs, which SQLite reads just the same.
constexpr const char* kDataSchema =
    R"(PRAGMA page_size = 16384;
       CREATE TABLE "Message" ("ID" INTEGER PRIMARY KEY NOT NULL,
         "Text" BLOB, "Html" BLOB, "Headers" BLOB);)";
constexpr const char* kAttachmentsSchema =
    R"(PRAGMA page_size = 65536;
       CREATE TABLE "Attachments" ("ID" INTEGER NOT NULL, "Filename" VARCHAR(255), "Data" BLOB);
       CREATE INDEX "ID" ON "Attachments" ("ID");)";

const QString kIndexFile = QStringLiteral("index.mdb");
const QString kDataFile = QStringLiteral("data.mdb");
const QString kAttachmentsFile = QStringLiteral("attachments.mdb");

// Whole seconds, as the field has always held; text in this form sorts in
// time order.
constexpr const char* kRealDateFormat = "yyyy-MM-dd HH:mm:ss";

bool missingOrEmpty(const QString& path) {
    const QFileInfo info(path);
    return !info.exists() || info.size() == 0;
}

QByteArray fieldText(const QByteArray& value) {
    return value.left(MailStore::kTextFieldSize);
}

// By hand: the list of a large folder reads thousands of these, and the
// general date parser costs more than the rest of the row.
QDateTime parseRealDate(const QByteArray& t) {
    if (t.size() != 19)
        return QDateTime::fromString(QString::fromLatin1(t), QLatin1String(kRealDateFormat));
    auto num = [&](int from, int len) { return t.mid(from, len).toInt(); };
    return QDateTime(QDate(num(0, 4), num(5, 2), num(8, 2)),
                     QTime(num(11, 2), num(14, 2), num(17, 2)));
}

IndexRow readIndex(const SqliteRows& st) {
    IndexRow r;
    r.id = st.integer(0);
    r.subject = st.bytes(1);
    r.from = st.bytes(2);
    r.date = st.bytes(3);
    r.to = st.bytes(4);
    r.attachments = st.integer(5);
    r.readed = qint16(st.integer(6));
    if (st.columnCount() > 7)
        r.realDate = parseRealDate(st.bytes(7));
    return r;
}

// The list leaves the stored time out: it is ordered by it already, and
// turning ten thousand of them into local times costs more than the rest.
constexpr const char* kListColumns =
    R"("ID", "Subject", "From", "Date", "To", "Attachments", "Readed")";
const std::string kIndexColumns = std::string(kListColumns) + R"(, "RealDate")";

void attach(SqliteDb& db, const QString& path, const char* alias) {
    if (!QFileInfo::exists(path))
        throw SqliteError(path, QStringLiteral("the file does not exist"));
    try {
        SQLite::Statement st(db.db(), std::string("ATTACH DATABASE ? AS ") + alias);
        st.bind(1, QFile::encodeName(path).toStdString());
        st.exec();
    } catch (const std::exception& e) {
        throw SqliteError(path, QString::fromUtf8(e.what()));
    }
}

void execBound(SQLite::Database& d, const char* sql, std::initializer_list<qint32> values) {
    SQLite::Statement st(d, sql);
    int i = 0;
    for (qint32 v : values)
        st.bind(++i, v);
    st.exec();
}

} // namespace

MailStore::MailStore(QString programDir, const Clock& clock, MessageSink& messages)
    : m_programDir(std::move(programDir)), m_clock(clock), m_messages(messages) {}

QString MailStore::mailRoot() const {
    QString root = resolvePath(m_programDir + QStringLiteral("\\Email"));
    if (!root.endsWith(QLatin1Char('/')))
        root += QLatin1Char('/');
    return root;
}

QString MailStore::folderDir(QByteArrayView folder) const {
    // A folder key is one directory name: a backslash in a user folder's
    // name is part of the name, not a separator.
    const QString name = Cp1252::toUnicode(folder);
    QString dir =
        name.contains(QLatin1Char('\\')) ? mailRoot() + name : resolvePath(mailRoot() + name);
    if (!dir.endsWith(QLatin1Char('/')))
        dir += QLatin1Char('/');
    return dir;
}

QString MailStore::databasePath(QByteArrayView folder, const QString& fileName) const {
    if (folder.contains('\\'))
        return folderDir(folder) + fileName;
    return resolvePath(folderDir(folder) + fileName);
}

QString MailStore::tempDir() const {
    return resolvePath(m_programDir + QStringLiteral("\\EmailTemp"));
}

QList<QByteArray> MailStore::MailStoreStartup(IniHelpers& ini) {
    makePrivateFolder(tempDir());
    for (const QByteArray& k : {kInbox, kOutbox, kSent, kDeleted}) {
        if (!missingOrEmpty(databasePath(k, kDataFile)))
            continue;
        makePrivateFolder(folderDir(k));
        CreateDataDatabase(k);
        CreateIndexDatabase(k);
        CreateAttachmentsDatabase(k);
    }

    // Every start asks for the blank page; one that is whole already is not
    // rewritten (and flushed to disk) again.
    QFile current(blankPagePath());
    const bool whole = current.open(QIODevice::ReadOnly) && current.readAll() == kBlankPage;
    const NewFileGuard fresh(blankPagePath());
    QSaveFile page(blankPagePath());
    if (!whole && page.open(QIODevice::WriteOnly)) {
        page.write(kBlankPage);
        page.commit();
        fresh.done();
    }

    QList<QByteArray> accounts;
    const QString accountsFile =
        resolvePath(m_programDir + QStringLiteral("\\email\\accounts.ini"));
    for (int i = 0; ini.ReadIniKey("Email", QByteArray::number(i), accountsFile); ++i)
        accounts.append(ini.IniValue);
    return accounts;
}

void MailStore::createDatabase(QByteArrayView folder, const QString& fileName, const char* schema) {
    const QString path = databasePath(folder, fileName);
    if (!missingOrEmpty(path))
        return;
    QFile::remove(path); // an empty file is not a database yet
    try {
        SqliteDb::create(path, schema);
    } catch (const SqliteError&) {
        // Ignored like every set-up error: the folder's operations will
        // report the missing database when they need it.
    }
}

void MailStore::CreateDataDatabase(QByteArrayView folder) {
    createDatabase(folder, kDataFile, kDataSchema);
}
void MailStore::CreateIndexDatabase(QByteArrayView folder) {
    createDatabase(folder, kIndexFile, kIndexSchema);
}
void MailStore::CreateAttachmentsDatabase(QByteArrayView folder) {
    createDatabase(folder, kAttachmentsFile, kAttachmentsSchema);
}

void MailStore::report(QByteArrayView folder, const QString& file, const QString& reason) {
    m_messages.showMessage(QStringLiteral("The mail folder \"%1\" could not be used.\n%2: %3")
                               .arg(Cp1252::toUnicode(folder), QFileInfo(file).fileName(), reason),
                           kMessageTitle, MessageSink::Icon::Critical);
}

template <typename Fn> bool MailStore::guarded(QByteArrayView folder, Fn&& fn) {
    try {
        fn();
        return true;
    } catch (const SqliteError& e) {
        report(folder, e.file(), e.reason());
    } catch (const std::exception& e) {
        report(folder, folderDir(folder), QString::fromUtf8(e.what()));
    }
    return false;
}

std::unique_ptr<SqliteDb> MailStore::openFolder(QByteArrayView folder) {
    auto db = std::make_unique<SqliteDb>(databasePath(folder, kIndexFile), m_busyTimeoutMs);
    attach(*db, databasePath(folder, kDataFile), "data");
    attach(*db, databasePath(folder, kAttachmentsFile), "att");
    return db;
}

std::optional<qint32> MailStore::createMessage(QByteArrayView folder, const NewIndexFields& fields,
                                               const MessageRow& bodies,
                                               const std::vector<AttachmentRow>& attachments) {
    Writer writer(*this, folder);
    const std::optional<qint32> id = writer.add(fields, bodies, attachments);
    return id && writer.commit() ? id : std::nullopt;
}

// What a transaction of the Writer runs again and again, prepared once.
// An absent index field is bound as NULL, which is what leaving it out
// writes: none of the four has a default.
struct MailStore::Writer::Prepared {
    Prepared(SQLite::Database& d, MailStore& store, QByteArrayView folder)
        : indexFile(store.databasePath(folder, kIndexFile)),
          dataFile(store.databasePath(folder, kDataFile)),
          attachmentsFile(store.databasePath(folder, kAttachmentsFile)),
          savepoint(d, "SAVEPOINT message"), release(d, "RELEASE message"),
          rollbackTo(d, "ROLLBACK TO message"),
          index(
              d,
              R"(INSERT INTO main."Index" ("Subject", "From", "Date", "To", "Attachments", "Readed", "RealDate")
                 VALUES (?, ?, ?, ?, ?, 0, ?))"),
          body(
              d,
              R"(INSERT OR REPLACE INTO data."Message" ("ID", "Text", "Html", "Headers") VALUES (?, ?, ?, ?))"),
          attachment(
              d, R"(INSERT INTO att."Attachments" ("ID", "Filename", "Data") VALUES (?, ?, ?))") {}

    static void run(SQLite::Statement& st) {
        st.reset();
        st.exec();
    }

    QString indexFile, dataFile, attachmentsFile;
    SQLite::Statement savepoint, release, rollbackTo;
    SQLite::Statement index, body, attachment;
    std::unique_ptr<SQLite::Statement> charsets;         // made on first use
    qint64 stamped = std::numeric_limits<qint64>::min(); // the second last written
    std::string stamp;
};

MailStore::Writer::Writer(MailStore& store, QByteArrayView folder)
    : m_store(store), m_folder(folder.toByteArray()) {}

MailStore::Writer::~Writer() {
    if (m_db) {
        try {
            m_db->db().exec("ROLLBACK");
        } catch (...) {
        }
    }
    close();
}

void MailStore::Writer::close() {
    m_st.reset(); // statements are finalised before their connection closes
    m_db.reset();
}

void MailStore::Writer::fail(const QString& file, const QString& reason) {
    // A locked file fails every message of the group the same way: one
    // report is enough.
    if (!m_reported)
        m_store.report(m_folder, file, reason);
    m_reported = true;
}

template <typename Fn> auto MailStore::Writer::inMessage(Fn&& fn) -> std::optional<decltype(fn())> {
    m_file = m_st ? m_st->indexFile : m_store.databasePath(m_folder, kIndexFile);
    try {
        if (!m_db) {
            std::unique_ptr<SqliteDb> db = m_store.openFolder(m_folder);
            // A group outgrows SQLite's small default cache, and every spill
            // of dirty pages before the commit costs a journal sync of its own.
            db->db().exec("PRAGMA main.cache_size = -16384; PRAGMA data.cache_size = -16384;"
                          "PRAGMA att.cache_size = -65536");
            db->db().exec("BEGIN IMMEDIATE");
            m_st = std::make_unique<Prepared>(db->db(), m_store, m_folder);
            m_db = std::move(db);
        }
        SQLite::Database& d = m_db->db();
        Prepared::run(m_st->savepoint);
        try {
            auto result = fn();
            Prepared::run(m_st->release);
            ++m_pending;
            return result;
        } catch (...) {
            // The charset table may have been made inside this message.
            m_st->charsets.reset();
            // A full disk or an I/O error may make SQLite undo the whole
            // transaction by itself: then the group is gone, not only this
            // message.
            if (sqlite3_get_autocommit(d.getHandle())) {
                close();
                m_lost = m_lost || m_pending > 0;
                m_pending = 0;
            } else {
                Prepared::run(m_st->rollbackTo);
                Prepared::run(m_st->release);
            }
            throw;
        }
    } catch (const SqliteError& e) {
        fail(e.file(), e.reason());
    } catch (const std::exception& e) {
        fail(m_file, QString::fromUtf8(e.what()));
    }
    if (m_db && sqlite3_get_autocommit(m_db->db().getHandle()))
        close();
    return std::nullopt;
}

qint32 MailStore::Writer::insertMessage(const NewIndexFields& fields, const MessageRow& bodies,
                                        qint32 count) {
    Prepared& p = *m_st;
    SQLite::Database& d = m_db->db();
    m_file = p.indexFile;
    p.index.reset();
    int column = 0;
    for (const std::optional<QByteArray>* value :
         {&fields.subject, &fields.from, &fields.date, &fields.to}) {
        ++column;
        if (value->has_value())
            SqliteDb::bindBytes(p.index, column, fieldText(**value));
        else
            p.index.bind(column);
    }
    p.index.bind(5, count);
    // Messages of one group mostly share their second: formatted once. The
    // second is told by the local date and time the stamp is made of, which
    // unlike the time since the epoch needs no look at the time zone.
    const QDateTime now = m_store.m_clock.now();
    if (const qint64 second =
            now.date().toJulianDay() * 86400 + now.time().msecsSinceStartOfDay() / 1000;
        second != p.stamped || !now.isValid()) {
        p.stamped = second;
        p.stamp = now.toString(QLatin1String(kRealDateFormat)).toStdString();
    }
    p.index.bind(6, p.stamp);
    p.index.exec();
    const qint32 id = qint32(d.getLastInsertRowid());

    m_file = p.dataFile;
    p.body.reset();
    p.body.bind(1, id);
    // The caller's bytes outlive the statement's run: bound without a copy.
    SqliteDb::bindBytesOrNull(p.body, 2, bodies.text, false);
    SqliteDb::bindBytesOrNull(p.body, 3, bodies.html, false);
    SqliteDb::bindBytesOrNull(p.body, 4, bodies.headers, false);
    p.body.exec();
    BodyCharsets::write(d, p.charsets, id, {bodies.textCharset, bodies.htmlCharset});
    return id;
}

void MailStore::Writer::insertAttachment(qint32 id, const AttachmentRow& attachment) {
    Prepared& p = *m_st;
    m_file = p.attachmentsFile;
    p.attachment.reset();
    p.attachment.bind(1, id);
    SqliteDb::bindBytes(p.attachment, 2, fieldText(attachment.filename));
    SqliteDb::bindBytesOrNull(p.attachment, 3, attachment.data, false);
    p.attachment.exec();
}

std::optional<qint32> MailStore::Writer::add(const NewIndexFields& fields, const MessageRow& bodies,
                                             const std::vector<AttachmentRow>& attachments) {
    return inMessage([&] {
        const qint32 id = insertMessage(fields, bodies, qint32(attachments.size()));
        for (const AttachmentRow& a : attachments)
            insertAttachment(id, a);
        return id;
    });
}

MailStore::Writer::Drawn MailStore::Writer::addDrawn(const NewIndexFields& fields,
                                                     const MessageRow& bodies,
                                                     const AttachmentSource& next) {
    Drawn drawn;
    drawn.id = inMessage([&] {
        drawn.attachments = 0;
        const qint32 id = insertMessage(fields, bodies, 0);
        SQLite::Database& d = m_db->db();
        while (const std::optional<AttachmentRow> a = next()) {
            d.exec("SAVEPOINT attachment");
            try {
                insertAttachment(id, *a);
            } catch (const std::exception& e) {
                if (sqlite3_get_autocommit(d.getHandle()))
                    throw; // the whole transaction is gone
                d.exec("ROLLBACK TO attachment");
                d.exec("RELEASE attachment");
                fail(m_file, QString::fromUtf8(e.what()));
                break;
            }
            d.exec("RELEASE attachment");
            ++drawn.attachments;
        }
        if (drawn.attachments > 0)
            execBound(d, R"(UPDATE main."Index" SET "Attachments" = ? WHERE "ID" = ?)",
                      {drawn.attachments, id});
        return id;
    });
    if (!drawn.id)
        drawn.attachments = 0;
    return drawn;
}

bool MailStore::Writer::commit() {
    bool ok = !m_lost;
    if (m_db) {
        try {
            m_db->db().exec(ok ? "COMMIT" : "ROLLBACK");
        } catch (const std::exception& e) {
            fail(m_db->path(), QString::fromUtf8(e.what()));
            try {
                m_db->db().exec("ROLLBACK");
            } catch (...) {
            }
            ok = false;
        }
    }
    close();
    m_pending = 0;
    m_lost = false;
    m_reported = false;
    return ok;
}

bool MailStore::addAttachment(QByteArrayView folder, qint32 id, const AttachmentRow& attachment) {
    return guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kAttachmentsFile), m_busyTimeoutMs);
        db.run([&](SQLite::Database& d) {
            SQLite::Statement st(
                d, R"(INSERT INTO "Attachments" ("ID", "Filename", "Data") VALUES (?, ?, ?))");
            st.bind(1, id);
            SqliteDb::bindBytes(st, 2, fieldText(attachment.filename));
            SqliteDb::bindBytesOrNull(st, 3, attachment.data);
            st.exec();
        });
    });
}

bool MailStore::DeleteMessage(QByteArrayView folder, qint32 id) {
    return guarded(folder, [&] {
        openFolder(folder)->run([&](SQLite::Database& d) {
            execBound(d, R"(DELETE FROM main."Index" WHERE "ID" = ?)", {id});
            execBound(d, R"(DELETE FROM data."Message" WHERE "ID" = ?)", {id});
            execBound(d, R"(DELETE FROM att."Attachments" WHERE "ID" = ?)", {id});
        });
    });
}

std::optional<qint32> MailStore::MoveMessage(QByteArrayView from, QByteArrayView to, qint32 id) {
    // Two keys may name one folder (the names compare without regard to
    // case): moving a message onto itself leaves it where it is.
    if (folderDir(from) == folderDir(to))
        return readIndexRow(from, id) ? std::optional<qint32>(id) : std::nullopt;
    std::optional<qint32> newId;
    const bool ok = guarded(from, [&] {
        std::unique_ptr<SqliteDb> db = openFolder(from);
        attach(*db, databasePath(to, kIndexFile), "dindex");
        attach(*db, databasePath(to, kDataFile), "ddata");
        attach(*db, databasePath(to, kAttachmentsFile), "datt");
        newId = db->run([&](SQLite::Database& d) -> std::optional<qint32> {
            SQLite::Statement copy(
                d,
                R"(INSERT INTO dindex."Index" ("Subject", "From", "Date", "To", "Attachments", "Readed", "RealDate")
                      SELECT "Subject", "From", "Date", "To", "Attachments", "Readed", "RealDate"
                      FROM main."Index" WHERE "ID" = ?)");
            copy.bind(1, id);
            if (copy.exec() == 0)
                return std::nullopt;
            const qint32 moved = qint32(d.getLastInsertRowid());
            execBound(d, R"(INSERT OR REPLACE INTO ddata."Message" ("ID", "Text", "Html", "Headers")
                            SELECT ?, "Text", "Html", "Headers" FROM data."Message" WHERE "ID" = ?)",
                      {moved, id});
            execBound(d, R"(INSERT INTO datt."Attachments" ("ID", "Filename", "Data")
                            SELECT ?, "Filename", "Data" FROM att."Attachments" WHERE "ID" = ? ORDER BY rowid)",
                      {moved, id});
            execBound(d, R"(DELETE FROM main."Index" WHERE "ID" = ?)", {id});
            execBound(d, R"(DELETE FROM data."Message" WHERE "ID" = ?)", {id});
            execBound(d, R"(DELETE FROM att."Attachments" WHERE "ID" = ?)", {id});
            return moved;
        });
    });
    return ok ? newId : std::nullopt;
}

QList<QByteArray> MailStore::recentHeaders(QByteArrayView folder, int n) {
    QList<QByteArray> headers;
    guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kDataFile), m_busyTimeoutMs);
        db.run(
            [&](SQLite::Database& d) {
                SQLite::Statement st(
                    d, R"(SELECT "Headers" FROM "Message" ORDER BY "ID" DESC LIMIT ?)");
                st.bind(1, n);
                while (st.executeStep())
                    headers.append(SqliteDb::columnBytes(st, 0));
            },
            false);
    });
    return headers;
}

// Every row of a folder's index, newest first, handed to row while SQLite
// still holds its values; reserve is told first how many there are.
template <typename Reserve, typename Row>
bool MailStore::eachListRow(QByteArrayView folder, Reserve&& reserve, Row&& row) {
    return guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kIndexFile), m_busyTimeoutMs);
        db.run(
            [&](SQLite::Database& d) {
                // Counting is cheap (SQLite counts the table's pages, not its
                // rows) and spares growing ten thousand rows step by step.
                SqliteRows count(d, R"(SELECT count(*) FROM "Index")");
                if (count.next())
                    reserve(std::max(0, count.integer(0)));
                SqliteRows st(d, std::string("SELECT ") + kListColumns +
                                     R"( FROM "Index" ORDER BY "RealDate" DESC, "ID" DESC)");
                while (st.next())
                    row(st);
            },
            false);
    });
}

std::vector<IndexRow> MailStore::FillMessageIndexList(QByteArrayView folder) {
    std::vector<IndexRow> rows;
    eachListRow(
        folder, [&](int count) { rows.reserve(size_t(count)); },
        [&](const SqliteRows& st) { rows.push_back(readIndex(st)); });
    return rows;
}

QList<QByteArray> MailStore::FillMessageListLines(QByteArrayView folder) {
    QList<QByteArray> lines;
    eachListRow(
        folder, [&](int count) { lines.reserve(count); },
        [&](const SqliteRows& st) {
            lines.append(IndexRow::listLine(st.integer(0), qint16(st.integer(6)), st.integer(5),
                                            st.view(1), st.view(2), st.view(3), st.view(4)));
        });
    return lines;
}

QList<QByteArray> MailStore::FillOutboxList() {
    QList<QByteArray> lines;
    guarded(kOutbox, [&] {
        SqliteDb db(databasePath(kOutbox, kIndexFile), m_busyTimeoutMs);
        db.run(
            [&](SQLite::Database& d) {
                SQLite::Statement st(d, R"(SELECT "From", "ID" FROM "Index" ORDER BY "ID")");
                while (st.executeStep())
                    lines.append(SqliteDb::columnBytes(st, 0) + '|' +
                                 QByteArray::number(st.getColumn(1).getInt()));
            },
            false);
    });
    return lines;
}

std::optional<IndexRow> MailStore::readIndexRow(QByteArrayView folder, qint32 id) {
    std::optional<IndexRow> row;
    guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kIndexFile), m_busyTimeoutMs);
        db.run(
            [&](SQLite::Database& d) {
                SqliteRows st(d, std::string("SELECT ") + kIndexColumns +
                                     R"( FROM "Index" WHERE "ID" = )" + std::to_string(id));
                if (st.next())
                    row = readIndex(st);
            },
            false);
    });
    return row;
}

std::optional<MessageRow> MailStore::readMessageRow(QByteArrayView folder, qint32 id) {
    std::optional<MessageRow> row;
    guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kDataFile), m_busyTimeoutMs);
        db.run(
            [&](SQLite::Database& d) {
                SQLite::Statement st(
                    d, R"(SELECT "ID", "Text", "Html", "Headers" FROM "Message" WHERE "ID" = ?)");
                st.bind(1, id);
                if (st.executeStep())
                    row = MessageRow{st.getColumn(0).getInt(), SqliteDb::columnBytes(st, 1),
                                     SqliteDb::columnBytes(st, 2), SqliteDb::columnBytes(st, 3)};
            },
            false);
    });
    return row;
}

std::vector<AttachmentRow> MailStore::readAttachments(QByteArrayView folder, qint32 id) {
    std::vector<AttachmentRow> rows;
    guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kAttachmentsFile), m_busyTimeoutMs);
        db.run(
            [&](SQLite::Database& d) {
                SQLite::Statement st(
                    d,
                    R"(SELECT "Filename", "Data" FROM "Attachments" WHERE "ID" = ? ORDER BY rowid)");
                st.bind(1, id);
                while (st.executeStep())
                    rows.push_back({SqliteDb::columnBytes(st, 0), SqliteDb::columnBytes(st, 1)});
            },
            false);
    });
    return rows;
}

bool MailStore::setReaded(QByteArrayView folder, qint32 id, qint16 readed) {
    return guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kIndexFile), m_busyTimeoutMs);
        db.run([&](SQLite::Database& d) {
            SQLite::Statement st(d, R"(UPDATE "Index" SET "Readed" = ? WHERE "ID" = ?)");
            st.bind(1, int(readed));
            st.bind(2, id);
            st.exec();
        });
    });
}

std::optional<ViewedRows> MailStore::readForView(QByteArrayView folder, qint32 id) {
    // A connection parses the schema of each file it opens, which is most of
    // what reading one row costs: the files are attached to one connection
    // rather than opened once per read. The attachments file is attached
    // only for a message that has any.
    const std::string key = std::to_string(id);
    ViewedRows out;
    try {
        SqliteDb db(databasePath(folder, kIndexFile), m_busyTimeoutMs);
        attach(db, databasePath(folder, kDataFile), "data");
        db.run(
            [&](SQLite::Database& d) {
                SqliteRows index(d, std::string("SELECT ") + kListColumns +
                                        R"( FROM main."Index" WHERE "ID" = )" + key);
                if (index.next())
                    out.index = readIndex(index);
                SqliteRows body(
                    d,
                    R"(SELECT "ID", "Text", "Html", "Headers" FROM data."Message" WHERE "ID" = )" +
                        key);
                if (body.next())
                    out.message = MessageRow{
                        body.integer(0), body.bytes(1), body.bytes(2), body.bytes(3), {}, {}};
                out.charsets = BodyCharsets::read(d, "data", id);
            },
            false);
        if (!out.index || out.index->attachments <= 0)
            return out;
        attach(db, databasePath(folder, kAttachmentsFile), "att");
        db.run(
            [&](SQLite::Database& d) {
                SqliteRows names(d, R"(SELECT "Filename" FROM att."Attachments" WHERE "ID" = )" +
                                        key + " ORDER BY rowid");
                while (names.next())
                    out.attachmentNames.push_back(names.bytes(0));
            },
            false);
    } catch (const std::exception&) {
        return std::nullopt;
    }
    return out;
}

} // namespace mirel
