#pragma once
// The address screen: sixteen one-line boxes and a notes box over the
// address book logic.
#include "organiser/AddressBook.h"
#include "organiser/AddressTransferScreen.h"
#include "organiser/OrganiserShared.h"

namespace mirel {

/// ADDRESSADD, ADDRESSSAVE, ADDRESSCANCEL, ADDRESSDELETE, ADDRESSIMPORT,
/// ADDRESSEXPORT and list clicks.
class AddressScreen {
public:
    explicit AddressScreen(OrganiserShared& shared)
        : m_sh(shared), m_book(shared.ctx), m_transfer(shared) {}
    void fill();
    bool command(const QByteArray& name);
    void listClicked();

private:
    void readBoxes();
    void writeBoxes();
    OrganiserShared& m_sh;
    AddressBook m_book;
    Contact m_current;
    AddressTransferScreen m_transfer;
};

} // namespace mirel
