#pragma once
// The lines a mail reader shows above a message: who wrote it, to whom,
// when and about what, decoded for reading. The stored header bytes stay
// as they are; this is only what the screen shows of them.
#include <QByteArrayView>
#include <QString>

namespace mirel {

/// From, To, Cc, Date and Subject of a stored header block, one line each;
/// a header the message lacks is left out.
QString messageHeaderText(QByteArrayView headers);

} // namespace mirel
