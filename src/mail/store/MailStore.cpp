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
constexpr const char* kDataSchema =
    R"(CREATE TABLE "Message" ("ID" INTEGER PRIMARY KEY NOT NULL,
         "Text" BLOB, "Html" BLOB, "Headers" BLOB);)";
constexpr const char* kAttachmentsSchema =
    R"(CREATE TABLE "Attachments" ("ID" INTEGER NOT NULL, "Filename" VARCHAR(255), "Data" BLOB);
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

IndexRow readIndex(SQLite::Statement& st) {
    IndexRow r;
    r.id = st.getColumn(0).getInt();
    r.subject = SqliteDb::columnBytes(st, 1);
    r.from = SqliteDb::columnBytes(st, 2);
    r.date = SqliteDb::columnBytes(st, 3);
    r.to = SqliteDb::columnBytes(st, 4);
    r.attachments = st.getColumn(5).getInt();
    r.readed = qint16(st.getColumn(6).getInt());
    if (st.getColumnCount() > 7)
        r.realDate = parseRealDate(SqliteDb::columnBytes(st, 7));
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

qint32 MailStore::insertIndexRow(SQLite::Database& d, const IndexRow& row,
                                 const NewIndexFields& fields) {
    QByteArray columns = R"("Attachments", "Readed", "RealDate")";
    QByteArray values = "?, ?, ?";
    const std::pair<const char*, const std::optional<QByteArray>*> named[] = {
        {R"("Subject")", &fields.subject},
        {R"("From")", &fields.from},
        {R"("Date")", &fields.date},
        {R"("To")", &fields.to}};
    std::vector<QByteArray> cut;
    cut.reserve(4);
    for (const auto& [name, value] : named) {
        if (!value->has_value())
            continue;
        columns += QByteArray(", ") + name;
        values += ", ?";
        cut.push_back(fieldText(**value));
    }
    SQLite::Statement st(
        d, ("INSERT INTO main.\"Index\" (" + columns + ") VALUES (" + values + ")").toStdString());
    st.bind(1, row.attachments);
    st.bind(2, int(row.readed));
    st.bind(3, row.realDate.toString(QLatin1String(kRealDateFormat)).toStdString());
    for (size_t i = 0; i < cut.size(); ++i)
        SqliteDb::bindBytes(st, int(4 + i), cut[i]);
    st.exec();
    return qint32(d.getLastInsertRowid());
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

MailStore::Writer::Writer(MailStore& store, QByteArrayView folder)
    : m_store(store), m_folder(folder.toByteArray()) {}

MailStore::Writer::~Writer() {
    if (m_db) {
        try {
            m_db->db().exec("ROLLBACK");
        } catch (...) {
        }
    }
}

void MailStore::Writer::fail(const QString& file, const QString& reason) {
    // A locked file fails every message of the group the same way: one
    // report is enough.
    if (!m_reported)
        m_store.report(m_folder, file, reason);
    m_reported = true;
}

std::optional<qint32> MailStore::Writer::add(const NewIndexFields& fields, const MessageRow& bodies,
                                             const std::vector<AttachmentRow>& attachments) {
    QString file = m_store.databasePath(m_folder, kIndexFile);
    try {
        if (!m_db) {
            m_db = m_store.openFolder(m_folder);
            m_db->db().exec("BEGIN IMMEDIATE");
        }
        SQLite::Database& d = m_db->db();
        d.exec("SAVEPOINT message");
        try {
            IndexRow row;
            row.realDate = m_store.m_clock.now();
            row.attachments = qint32(attachments.size());
            const qint32 id = m_store.insertIndexRow(d, row, fields);
            file = m_store.databasePath(m_folder, kDataFile);
            SQLite::Statement body(
                d,
                R"(INSERT OR REPLACE INTO data."Message" ("ID", "Text", "Html", "Headers") VALUES (?, ?, ?, ?))");
            body.bind(1, id);
            SqliteDb::bindBytesOrNull(body, 2, bodies.text);
            SqliteDb::bindBytesOrNull(body, 3, bodies.html);
            SqliteDb::bindBytesOrNull(body, 4, bodies.headers);
            body.exec();
            BodyCharsets::write(d, id, {bodies.textCharset, bodies.htmlCharset});
            file = m_store.databasePath(m_folder, kAttachmentsFile);
            SQLite::Statement att(
                d, R"(INSERT INTO att."Attachments" ("ID", "Filename", "Data") VALUES (?, ?, ?))");
            for (const AttachmentRow& a : attachments) {
                att.reset();
                att.bind(1, id);
                SqliteDb::bindBytes(att, 2, fieldText(a.filename));
                SqliteDb::bindBytesOrNull(att, 3, a.data);
                att.exec();
            }
            d.exec("RELEASE message");
            ++m_pending;
            return id;
        } catch (...) {
            // A full disk or an I/O error may make SQLite undo the whole
            // transaction by itself: then the group is gone, not only this
            // message.
            if (sqlite3_get_autocommit(d.getHandle())) {
                m_db.reset();
                m_lost = m_lost || m_pending > 0;
                m_pending = 0;
            } else {
                d.exec("ROLLBACK TO message");
                d.exec("RELEASE message");
            }
            throw;
        }
    } catch (const SqliteError& e) {
        fail(e.file(), e.reason());
    } catch (const std::exception& e) {
        fail(file, QString::fromUtf8(e.what()));
    }
    if (m_db && sqlite3_get_autocommit(m_db->db().getHandle())) // BEGIN itself failed
        m_db.reset();
    return std::nullopt;
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
    m_db.reset();
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

bool MailStore::setAttachmentCount(QByteArrayView folder, qint32 id, qint32 count) {
    return guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kIndexFile), m_busyTimeoutMs);
        db.run([&](SQLite::Database& d) {
            SQLite::Statement st(d, R"(UPDATE "Index" SET "Attachments" = ? WHERE "ID" = ?)");
            st.bind(1, count);
            st.bind(2, id);
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

std::vector<IndexRow> MailStore::FillMessageIndexList(QByteArrayView folder) {
    std::vector<IndexRow> rows;
    guarded(folder, [&] {
        SqliteDb db(databasePath(folder, kIndexFile), m_busyTimeoutMs);
        db.run(
            [&](SQLite::Database& d) {
                SQLite::Statement st(d, std::string("SELECT ") + kListColumns +
                                            R"( FROM "Index" ORDER BY "RealDate" DESC, "ID" DESC)");
                while (st.executeStep())
                    rows.push_back(readIndex(st));
            },
            false);
    });
    return rows;
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
                SQLite::Statement st(d, std::string("SELECT ") + kIndexColumns +
                                            R"( FROM "Index" WHERE "ID" = ?)");
                st.bind(1, id);
                if (st.executeStep())
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

} // namespace mirel
