#pragma once
// Export and import of the address book as delimited text.
//
// Export writes the skin's "exportstring" line, then one line per contact in
// list order: the seventeen exchange fields joined by ";", a field holding
// ";" between double quotes (quotes inside are not doubled), the notes on
// one line (CR becomes a blank, LF goes). Windows-1252, CR LF.
//
// Import writes one new contact file per record. The next free number is
// found once and counted on: the folder is not listed again for every
// record, which would make a large import quadratic, and gives the same
// names since nothing else writes the folder meanwhile. A contact file that
// cannot be written whole is removed and ends the import.
#include "organiser/AddressCsv.h"

#include <functional>

namespace mirel {

/// The address book's exchange with other programs, on files and values.
class AddressExchange {
public:
    explicit AddressExchange(const OrganiserContext& ctx) : m_ctx(ctx), m_book(ctx) {}

    static QByteArray exportLine(const Contact& c);
    /// Key `key` of the screen skin's "ADDRESS" section (empty when missing).
    QByteArray skinText(const QByteArray& key) const;
    /// The captions the address screen shows beside its boxes.
    FieldCaptions captions() const;
    /// Writes every contact of the list in its sorted order; false, and
    /// reported, when the file cannot be written.
    bool exportTo(const QString& path) const;

    /// Reads a file for import; a missing, unreadable, oversized or empty
    /// file, or one with nothing under its header, is reported and gives
    /// nullopt.
    std::optional<AddressCsv> open(const QString& path) const;

    struct Outcome {
        int written = 0;
        int empty = 0; // records whose assigned fields were all empty
        bool failed = false;
    };
    /// Called after every record with (records done, records in all).
    using Progress = std::function<void(int, int)>;
    Outcome importRecords(const AddressCsv& csv, const ColumnAssignment& assignment,
                          const Progress& progress = {}) const;

private:
    const OrganiserContext& m_ctx;
    AddressBook m_book;
};

} // namespace mirel
