// A second process for tests that need one:
//   store-received PROGRAMDIR FILE...      stores each message file into folder "0"
//                                          as received mail, one ID per line out
//   receive PROGRAMDIR PORT USER PASSWORD GROUP
//                                          one send/receive run against a POP3 server
//                                          on 127.0.0.1 (delete flag on), status lines out
//   move PROGRAMDIR FROM TO ID             moves one message, its new ID out
//   hold-lock FILE                         holds a write lock on a database until
//                                          stdin closes ("locked" out once it holds)
//   dovecot USER PASSWORD FILE...          a dovecot POP3 server holding the message
//                                          files for USER: its port out, up until
//                                          stdin closes
// With MIREL_KILL_AFTER_WRITES=k, receive and move kill themselves (SIGKILL)
// right after their k-th write to a file; with MIREL_FILE_SIZE_LIMIT=n no
// file may grow beyond n bytes (the write fails as on a full disk); with
// MIREL_SQLITE_MAX_LENGTH=n no value in a database may exceed n bytes.
#include "mail/mime/ReceivedMessageStore.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"
#include "mail/transport/SendReceiveRunner.h"
#include "platform/Clock.h"
#include "platform/IniFile.h"
#include "platform/SettingsStore.h"
#include "servers/DovecotServer.h"
#include "settings/IniHelpers.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <SQLiteCpp/Database.h>
#include <csignal>
#include <cstdio>
#include <dlfcn.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace mirel;

namespace {
long g_killAfter = 0;
long g_writes = 0;
int g_maxLength = 0;

int limitLength(sqlite3* db, char**, const sqlite3_api_routines*) {
    sqlite3_limit(db, SQLITE_LIMIT_LENGTH, g_maxLength);
    return SQLITE_OK;
}

void countWrite(int fd) {
    struct stat st;
    if (g_killAfter > 0 && fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && ++g_writes >= g_killAfter)
        raise(SIGKILL);
}

template <typename Fn> Fn real(const char* name) {
    return reinterpret_cast<Fn>(dlsym(RTLD_NEXT, name));
}

// From here on, every write to a file counts towards the kill.
void armFaults() {
    g_killAfter = qEnvironmentVariableIntValue("MIREL_KILL_AFTER_WRITES");
    if (const qint64 limit = qEnvironmentVariable("MIREL_FILE_SIZE_LIMIT").toLongLong()) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit r{rlim_t(limit), rlim_t(limit)};
        setrlimit(RLIMIT_FSIZE, &r);
    }
    if ((g_maxLength = qEnvironmentVariableIntValue("MIREL_SQLITE_MAX_LENGTH")) > 0)
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(limitLength));
}
} // namespace

// Seen by SQLite and Qt instead of the C library's own.
extern "C" ssize_t write(int fd, const void* buf, size_t n) {
    static const auto next = real<ssize_t (*)(int, const void*, size_t)>("write");
    const ssize_t r = next(fd, buf, n);
    countWrite(fd);
    return r;
}
extern "C" ssize_t pwrite64(int fd, const void* buf, size_t n, __off64_t at) {
    static const auto next = real<ssize_t (*)(int, const void*, size_t, __off64_t)>("pwrite64");
    const ssize_t r = next(fd, buf, n, at);
    countWrite(fd);
    return r;
}

namespace {
// Whatever the store reports goes to stderr; the test reads the exit code.
struct StderrSink final : MessageSink {
    void showMessage(const QString& text, const QString&, Icon) override {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
    bool askYesNo(const QString&, const QString&) override { return false; }
};

// The mail store of a program folder, started as the program starts it.
struct StartedStore {
    explicit StartedStore(const QString& programDir, int busyTimeoutMs = 0)
        : settings(programDir + QStringLiteral("/helper-settings")),
          store(programDir, clock, sink) {
        if (busyTimeoutMs)
            store.setBusyTimeout(busyTimeoutMs);
        store.MailStoreStartup(ini);
    }
    StderrSink sink;
    SettingsStore settings;
    IniHelpers ini{sink, settings};
    SystemClock clock;
    MailStore store;
};

void printLine(const QByteArray& line) {
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

// The test ends a holding command by closing its stdin.
void waitForStdinToClose() {
    char c;
    while (read(0, &c, 1) > 0) {
    }
}
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList a = app.arguments();
    if (a.size() >= 3 && a[1] == QLatin1String("store-received")) {
        StartedStore s(a[2]);
        DuplicateDetector duplicates(s.store.incomingRecordPath());
        ReceivedMessageStore received(s.store, duplicates);
        for (qsizetype i = 3; i < a.size(); ++i) {
            QFile f(a[i]);
            if (!f.open(QIODevice::ReadOnly) || !received.StoreReceivedMessage(f.readAll(), "0")) {
                std::fprintf(stderr, "not stored: %s\n", qPrintable(a[i]));
                return 2;
            }
            std::printf("%d\n", received.lastId());
        }
        return 0;
    }
    if (a.size() == 7 && a[1] == QLatin1String("receive")) {
        StartedStore s(a[2], 200);
        const QByteArray account = "  Ann|127.0.0.1:" + a[3].toUtf8() + "|" + a[4].toUtf8() + "|" +
                                   a[5].toUtf8() + "|1|0||ann@x.org|Ann|";
        SendReceiveRunner runner(s.store, s.ini, s.clock, EmailAccountList({account}), {});
        runner.setGroupSize(a[6].toInt());
        // The test server offers no TLS: pre-approved as a user would.
        const QString trust = a[2] + QStringLiteral("/servers.ini");
        IniFile::write(trust, "127.0.0.1:" + a[3].toUtf8(), "Plaintext", "1");
        runner.setServerTrust(trust, [](const QString&, const QString&) { return false; });
        QEventLoop loop;
        QObject::connect(&runner, &SendReceiveRunner::statusLine, printLine);
        QObject::connect(&runner, &SendReceiveRunner::over, &loop, &QEventLoop::quit);
        armFaults();
        runner.open();
        if (!runner.isOver())
            loop.exec();
        return 0;
    }
    if (a.size() == 6 && a[1] == QLatin1String("move")) {
        StartedStore s(a[2]);
        armFaults();
        const std::optional<qint32> id =
            s.store.MoveMessage(a[3].toUtf8(), a[4].toUtf8(), a[5].toInt());
        std::printf("%d\n", id.value_or(0));
        return id ? 0 : 2;
    }
    if (a.size() == 3 && a[1] == QLatin1String("hold-lock")) {
        SQLite::Database db(QFile::encodeName(a[2]).toStdString(), SQLite::OPEN_READWRITE);
        db.exec("BEGIN IMMEDIATE");
        printLine("locked");
        waitForStdinToClose();
        return 0;
    }
    if (a.size() >= 4 && a[1] == QLatin1String("dovecot")) {
        test::DovecotServer server;
        const QByteArray user = a[2].toUtf8();
        server.addUser(user, a[3].toUtf8());
        for (qsizetype i = 4; i < a.size(); ++i) {
            QFile f(a[i]);
            if (!f.open(QIODevice::ReadOnly))
                return 2;
            server.deliver(user, f.readAll());
        }
        if (!server.start())
            return 3;
        printLine(QByteArray::number(server.port()));
        waitForStdinToClose();
        return 0;
    }
    std::fprintf(stderr, "usage: see source\n");
    return 1;
}
