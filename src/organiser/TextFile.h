#pragma once
// Organiser item files: Windows-1252 text with CR LF line ends, read
// line by line (LF alone also ends a line) and written whole through an
// atomic replace, so a crash during a save leaves the old item intact.
#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace mirel {

/// Whole-file access for the organiser's text files.
class TextFile {
public:
    /// The file's lines without their line ends; nullopt when it cannot be read.
    static std::optional<QList<QByteArray>> readLines(const QString& path,
                                                      QString* error = nullptr);
    /// The first line only (what lists show), reading no further than its end.
    static std::optional<QByteArray> readFirstLine(const QString& path, QString* error = nullptr);
    /// The first count lines as readLines gives them, reading no further
    /// than they reach: for lists that show the head of many files.
    static std::optional<QList<QByteArray>> readHead(const QString& path, int count);
    /// Replaces the file with bytes atomically.
    static bool write(const QString& path, const QByteArray& bytes, QString* error = nullptr);
    /// Each line followed by CR LF.
    static QByteArray joinLines(const QList<QByteArray>& lines);
    /// Files of a folder in name order, hidden files excepted.
    static QStringList listFolder(const QString& folder);
};

} // namespace mirel
