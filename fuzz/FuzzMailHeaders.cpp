// Fuzz target: header encoding and address lists of outgoing mail, and the
// account record fields they come from. Checks that encoded text is plain
// ASCII in short lines, that a formatted address list reads back as the same
// addresses, and that a record's fields survive an edit.
#include "mail/transport/AccountRecord.h"
#include "platform/MailHeaders.h"

#include <cstdint>
#include <cstdlib>

using namespace mirel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray in(reinterpret_cast<const char*>(data), qsizetype(size));

    const QByteArray encoded = MailHeaders::encodeText(in);
    bool changed = encoded != in;
    for (const QByteArray& line : encoded.split('\n')) {
        if (!changed)
            break;
        if (line.size() > 78)
            std::abort();
        for (char c : line)
            if (uchar(c) >= 0x7F || (uchar(c) < 0x20 && c != '\r'))
                std::abort();
    }

    for (int n = 0; n < AccountRecord::kFieldCount; ++n)
        (void)AccountRecord::field(in, n);
    AccountRecord::Settings s = AccountRecord::settings(in);
    if (AccountRecord::settings(AccountRecord::edited(in, s)) != s)
        std::abort();

    const QList<Mailbox> list = MailHeaders::parseAddressList(in);
    // Only real addresses need to survive: one holding list punctuation is
    // garbage already, and it is enough that it does no harm.
    for (const Mailbox& m : list)
        for (char c : m.address)
            if (c == '<' || c == '>' || c == '"' || c == ',')
                return 0;
    QList<Mailbox> again = MailHeaders::parseAddressList(MailHeaders::formatAddressList(list));
    if (again.size() != list.size())
        std::abort();
    for (qsizetype i = 0; i < list.size(); ++i)
        if (again[i].address != list[i].address)
            std::abort();

    return 0;
}
