#pragma once
// Address book: one file per contact in the fixed folder "\mirel\addressbook",
// named by a number + ".dat", exactly seventeen lines: fields 1 to 12, then
// fields 15, 16, 13, 14 (that order on disk, both ways), then the notes in
// the decimal-triplet encoding. Field 1 is the name the list shows.
#include "organiser/OrganiserContext.h"
#include "organiser/OrganiserState.h"

#include <array>
#include <optional>

namespace mirel {

/// One contact: its file name (empty for a new one), sixteen fields, notes.
struct Contact {
    QByteArray fileName;
    std::array<QByteArray, 16> fields; // fields[0] is field 1
    QByteArray notes;
    bool operator==(const Contact&) const = default;
};

/// The address screen's operations, on values; also the contact file
/// format that import and export use.
class AddressBook {
public:
    explicit AddressBook(const OrganiserContext& ctx) : m_ctx(ctx) {}

    QString folder() const;
    /// Reads a contact; a file of fewer than 17 lines is reported and yields nullopt.
    std::optional<Contact> read(const QByteArray& fileName) const;
    static QByteArray serialise(const Contact& c);
    /// The next free number: one above the highest leading number of any file name.
    int nextNumber() const;

    void load(OrganiserState& st) const;
    /// Fills current (and so the boxes) with contact i, or empties it.
    void show(const OrganiserState& st, int i, Contact& current) const;
    void add(OrganiserState& st, Contact& current) const;
    void cancel(const OrganiserState& st, Contact& current) const {
        show(st, st.selection, current);
    }
    void click(OrganiserState& st, int row, Contact& current) const;
    /// Writes the boxes into the current contact's file (a new number when
    /// it has none) and reloads the list; boxes and selection stay.
    bool save(OrganiserState& st, Contact& current) const;
    bool remove(OrganiserState& st, Contact& current) const;

private:
    const OrganiserContext& m_ctx;
};

} // namespace mirel
