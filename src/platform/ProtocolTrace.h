#pragma once
// Protocol traces go to the debug log, which is a plain file anyone at the
// desk can read. What the client sends is therefore passed through only for
// commands known to carry no secret; every other line the client sends
// (PASS, the SASL exchanges that carry the password in base64) is replaced.
#include <QByteArray>

namespace mirel {

/// Trace text of what a mail client sent, with secrets hidden.
QByteArray redactSentLine(QByteArrayView line);

} // namespace mirel
