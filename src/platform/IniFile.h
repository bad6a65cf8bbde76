#pragma once
// File access for INI files: reads without a lock (files are only ever
// replaced whole, so a reader sees the old file or the new one), writes as a
// locked read-modify-write that replaces the file atomically. The lock is a
// kernel lock on a file beside it, so two processes writing keys into the
// same file never lose each other's keys.
#include "platform/IniDocument.h"

#include <QString>
#include <functional>

namespace mirel {

/// Outcome of an INI file operation.
struct IniResult {
    enum Status { Ok, Missing, IoError };
    Status status = Ok;
    QString error; // for IoError: what failed, naming the file
    explicit operator bool() const { return status == Ok; }
};

/// Reads and edits INI files on disk; every path goes through resolvePath.
class IniFile {
public:
    /// The whole file; Missing when it does not exist.
    static IniResult load(const QString& path, QByteArray& bytes);
    static IniResult read(const QString& path, QByteArrayView section, QByteArrayView key,
                          QByteArray& value);
    /// IoError without touching the file when IniDocument::canWrite refuses.
    static IniResult write(const QString& path, QByteArrayView section, QByteArrayView key,
                           QByteArrayView value);
    /// The IoError of a write whose text IniDocument::canWrite refuses.
    static IniResult refused(const QString& path);
    /// Missing when the file or the section does not exist.
    static IniResult removeKey(const QString& path, QByteArrayView section, QByteArrayView key);
    static IniResult removeSection(const QString& path, QByteArrayView section);
    /// Writes bytes as the file's new content, atomically.
    static IniResult save(const QString& path, const QByteArray& bytes);

    /// Runs edit on the current content under the file's lock and saves the
    /// result when edit returns Ok. The file need not exist.
    static IniResult modify(const QString& path,
                            const std::function<IniResult(IniDocument&, bool exists)>& edit);
};

} // namespace mirel
