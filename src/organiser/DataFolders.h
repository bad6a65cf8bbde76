#pragma once
// The organiser's folder tree and the one-time conversion of the old
// single-file store "mirel-data.ini" into per-item files.
//
// Runs at every start with errors ignored: each step that fails is skipped.
// After a start the folders exist, "directories.ini" holds its three keys
// (a present key is never changed) and the old store no longer holds the
// sections that were converted, so the next start converts nothing.
#include "organiser/OrganiserContext.h"

namespace mirel {

/// The data-folder bootstrap.
class DataFolders {
public:
    explicit DataFolders(const OrganiserContext& ctx) : m_ctx(ctx) {}
    void bootstrap();

private:
    QString oldStore() const;
    void convertContacts();
    void convertAgenda();
    void convertCalendar();
    /// LOG, NOTES, TODO: decoded items sorted, written one file each.
    void convertItems(const QByteArray& section, const QString& folder, const char* extension);
    QList<QByteArray> decodedItems(const QByteArray& section);

    const OrganiserContext& m_ctx;
};

} // namespace mirel
