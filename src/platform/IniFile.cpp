#include "platform/IniFile.h"
#include "platform/PrivateFiles.h"

#include "platform/PathResolver.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

namespace mirel {
namespace {

IniResult ioError(const QString& what, const QString& path, const QString& why) {
    return {IniResult::IoError, QStringLiteral("%1 \"%2\": %3").arg(what, path, why)};
}

// A writer that died holding the lock leaves it behind; after this long the
// lock counts as stale (QLockFile also checks whether the owner still runs).
constexpr int kStaleLockMs = 30000;
constexpr int kLockWaitMs = 20000;

} // namespace

IniResult IniFile::load(const QString& rawPath, QByteArray& bytes) {
    bytes.clear();
    const QString path = resolvePath(rawPath);
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        if (!QFileInfo::exists(path))
            return {IniResult::Missing, {}};
        return ioError(QStringLiteral("Cannot read"), path, f.errorString());
    }
    if (QFileInfo(path).isDir())
        return ioError(QStringLiteral("Cannot read"), path, QStringLiteral("is a folder"));
    bytes = f.readAll();
    if (f.error() != QFileDevice::NoError)
        return ioError(QStringLiteral("Cannot read"), path, f.errorString());
    return {};
}

IniResult IniFile::read(const QString& path, QByteArrayView section, QByteArrayView key,
                        QByteArray& value) {
    value.clear();
    QByteArray bytes;
    IniResult r = load(path, bytes);
    if (!r)
        return r;
    const auto v = IniDocument::lookup(bytes, section, key);
    if (!v)
        return {IniResult::Missing, {}};
    value = *v;
    return {};
}

IniResult IniFile::save(const QString& rawPath, const QByteArray& bytes) {
    const QString path = resolvePath(rawPath);
    const NewFileGuard fresh(path);
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return ioError(QStringLiteral("Cannot write"), path, f.errorString());
    if (f.write(bytes) != bytes.size()) {
        f.cancelWriting();
        return ioError(QStringLiteral("Cannot write"), path, f.errorString());
    }
    if (!f.commit())
        return ioError(QStringLiteral("Cannot write"), path, f.errorString());
    fresh.done();
    return {};
}

IniResult IniFile::modify(const QString& rawPath,
                          const std::function<IniResult(IniDocument&, bool)>& edit) {
    const QString path = resolvePath(rawPath);
    QLockFile lock(path + QStringLiteral(".lock"));
    lock.setStaleLockTime(kStaleLockMs);
    if (!lock.tryLock(kLockWaitMs))
        return ioError(QStringLiteral("Cannot lock"), path,
                       lock.error() == QLockFile::LockFailedError
                           ? QStringLiteral("another program holds the lock")
                           : QStringLiteral("the folder is not writable"));
    QByteArray bytes;
    const IniResult loaded = load(path, bytes);
    if (loaded.status == IniResult::IoError)
        return loaded;
    IniDocument doc(std::move(bytes));
    const IniResult edited = edit(doc, loaded.status == IniResult::Ok);
    if (!edited)
        return edited;
    return save(path, doc.bytes());
}

IniResult IniFile::write(const QString& path, QByteArrayView section, QByteArrayView key,
                         QByteArrayView value) {
    if (!IniDocument::canWrite(section, key, value))
        return refused(path);
    return modify(path, [&](IniDocument& doc, bool) {
        doc.setValue(section, key, value);
        return IniResult{};
    });
}

IniResult IniFile::refused(const QString& path) {
    return ioError(QStringLiteral("Cannot write"), resolvePath(path),
                   QStringLiteral("the text holds a line break, a NUL or a bracket that would "
                                  "change the file's layout"));
}

IniResult IniFile::removeKey(const QString& path, QByteArrayView section, QByteArrayView key) {
    return modify(path, [&](IniDocument& doc, bool exists) {
        if (!exists || !doc.removeKey(section, key))
            return IniResult{IniResult::Missing, {}};
        return IniResult{};
    });
}

IniResult IniFile::removeSection(const QString& path, QByteArrayView section) {
    return modify(path, [&](IniDocument& doc, bool exists) {
        if (!exists || !doc.removeSection(section))
            return IniResult{IniResult::Missing, {}};
        return IniResult{};
    });
}

} // namespace mirel
