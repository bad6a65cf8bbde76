#pragma once
// The one set of helpers through which every part of the program reads,
// writes and deletes INI entries.
//
// ReadIniKey reports found / not found and leaves the value in IniValue:
// every call empties IniValue first, so a caller takes the value right after
// a successful read, before the next call. A value that is literally
// "NotFound" reads as missing, and a value is cut at its first NUL and to
// 31999 characters (what a 32000-character buffer with its terminating zero
// holds). A missing file, section or key is never an error; a file that
// exists but cannot be read is, and shows "Error Retrieving Key".
#include "platform/MessageSink.h"
#include "platform/SettingsStore.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace mirel {

/// ReadIniKey, WriteIniKey, DeleteIniEntry and ShortPathOf with the shared IniValue.
class IniHelpers {
public:
    static constexpr qsizetype kValueCap = 31999;
    static inline const QByteArray kNotFound = QByteArrayLiteral("NotFound");

    IniHelpers(MessageSink& messages, SettingsStore& store);

    /// A stored value as a read gives it: cut at a NUL and at the length cap;
    /// the "not found" marker counts as missing.
    static std::optional<QByteArray> readableValue(QByteArray value);

    /// The value of the most recent successful read.
    QByteArray IniValue;

    bool ReadIniKey(QByteArrayView section, QByteArrayView key, const QString& file);
    /// True on success; on failure shows "Error Writing Key".
    bool WriteIniKey(QByteArrayView section, QByteArrayView key, QByteArrayView value,
                     const QString& file);
    /// isIniFile: whole file (empty section), a section (empty key) or a key
    /// of an INI file; otherwise file names an application of the shared
    /// store. Failures raise RuntimeError (source "DeleteSetting [INI-File]",
    /// description "System Error Code") unless ignoreErrors.
    void DeleteIniEntry(const QString& file, QByteArrayView section, QByteArrayView key,
                        bool isIniFile, bool ignoreErrors);

    /// Linux paths need no short form: the path itself when it exists,
    /// empty when it does not.
    static QString ShortPathOf(const QString& path);

private:
    MessageSink& m_messages;
    SettingsStore& m_store;
};

} // namespace mirel
