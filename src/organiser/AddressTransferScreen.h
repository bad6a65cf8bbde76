#pragma once
// ADDRESSEXPORT and ADDRESSIMPORT on the address screen: the path prompts
// of the skinned input dialog, the import dialog, and what the user is told
// when a file gives less than it promised.
#include "organiser/AddressExchange.h"
#include "organiser/OrganiserShared.h"

namespace mirel {

/// The address screen's file commands over AddressExchange.
class AddressTransferScreen {
public:
    explicit AddressTransferScreen(OrganiserShared& shared)
        : m_sh(shared), m_exchange(shared.ctx) {}

    /// Asks a path: the prompt text and the proposed answer; empty for none.
    using PathPrompt = std::function<QByteArray(const QByteArray&, const QByteArray&)>;
    void setPathPrompt(PathPrompt prompt) { m_prompt = std::move(prompt); }

    void exportBook();
    /// True when contact files were written (the list is to be loaded again).
    bool importFile();

private:
    QString askPath(const QByteArray& promptKey);

    OrganiserShared& m_sh;
    AddressExchange m_exchange;
    PathPrompt m_prompt;
};

} // namespace mirel
