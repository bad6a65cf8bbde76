#include "platform/ProtocolTrace.h"

#include <array>

namespace mirel {
namespace {

// Commands of POP3 and SMTP whose arguments are no secret.
constexpr std::array<const char*, 19> kSafeCommands = {
    "CAPA", "STLS", "STAT", "LIST", "RETR", "DELE", "QUIT", "UIDL",     "TOP", "NOOP",
    "RSET", "USER", "EHLO", "HELO", "MAIL", "RCPT", "DATA", "STARTTLS", "VRFY"};

} // namespace

QByteArray redactSentLine(QByteArrayView line) {
    QByteArray text = line.toByteArray();
    while (text.endsWith('\n') || text.endsWith('\r'))
        text.chop(1);
    const qsizetype space = text.indexOf(' ');
    const QByteArray verb = (space < 0 ? text : text.left(space)).toUpper();
    for (const char* safe : kSafeCommands)
        if (verb == safe)
            return text;
    // "AUTH PLAIN <initial response>": the mechanism may be shown, the rest not.
    if (verb == "AUTH") {
        const qsizetype second = text.indexOf(' ', space + 1);
        return second < 0 ? text : text.left(second) + " <hidden>";
    }
    return "<hidden>";
}

} // namespace mirel
