#pragma once
// Paths in the system are written the Windows way: a folder followed by a
// literal such as "\Mirel\Calendar.ini". On a case-sensitive file system the
// literal must still find "mirel/calendar.ini" when that is what exists.
#include <QString>

namespace mirel {

/// Turns backslash paths into "/" paths and resolves every component against
/// what exists on disk without regard to case. An exact match wins; a missing
/// component (and everything after it) keeps the spelling given, so creating
/// it uses that spelling.
QString resolvePath(const QString& path);

} // namespace mirel
