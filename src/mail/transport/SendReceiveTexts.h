#pragma once
#include <QByteArray>
#include <QString>

namespace mirel {

class IniHelpers;

/// The status texts and sounds a theme gives the send/receive window; a key
/// the skin lacks leaves its text empty.
struct SendReceiveTexts {
    static inline const QByteArray kSection = QByteArrayLiteral("EMAILSENDRECEIVE");

    QByteArray signedIn;      // textL
    QByteArray ready;         // textM
    QByteArray noMessages;    // textN
    QByteArray stored;        // textO
    QByteArray done;          // textP
    QByteArray outbox;        // textQ
    QByteArray receiving;     // textR (themes carry it; no line uses it)
    QByteArray sent;          // textS
    QByteArray incomingSound; // sndEmailIncomming
    QByteArray outgoingSound; // sndEmailoutgoing

    static SendReceiveTexts read(IniHelpers& ini, const QString& skinFile);
};

} // namespace mirel
