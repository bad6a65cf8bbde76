#pragma once
#include "platform/MailServer.h"
#include "platform/TransportError.h"

#include <QByteArray>

namespace mirel {

/// What the send/receive session asks of the world around it: the POP3 and
/// SMTP clients, the two timers, the store, the status list, the sounds and
/// the debug log. The session calls these and is told the outcome through
/// its own event methods; none of them may call back into the session
/// before it returns.
class SendReceivePort {
public:
    enum class Stored { New, Known, Failed };

    virtual ~SendReceivePort() = default;

    /// Starts a POP3 action (connect, fetch, delete, log out); the end comes
    /// back as pop3Completed or pop3Failed.
    virtual void startPop3(int action, const MailServer& server, int messageNumber) = 0;
    /// The one-shot timers: the start timer (100 ms) and the step timer (1 ms).
    virtual void startStartTimer() = 0;
    virtual void startStepTimer() = 0;
    /// Hands the message just fetched to the store of received mail; a New
    /// one is durable only after the next commitStored().
    virtual Stored storeFetched() = 0;
    /// Makes every message stored so far durable and recorded; false when
    /// the ones since the last commit are not stored after all.
    virtual bool commitStored() = 0;
    /// Whether the stored messages should be committed before the group is
    /// full: an open group keeps other writers of the folder waiting.
    virtual bool commitDue() { return false; }

    /// Reads outbox message id and starts sending it through server; the end
    /// comes back as smtpSent or smtpFailed. A message that cannot be read
    /// is reported here and nothing starts.
    virtual TransportError startSend(qint32 id, const MailServer& server) = 0;
    /// After a send: the outbox record is marked read; a sent one moves on.
    virtual void markRead(qint32 id) = 0;
    virtual bool moveToSent(qint32 id) = 0;

    virtual void status(const QByteArray& line) = 0;
    virtual void playSound(const QByteArray& sound) = 0;
    virtual void log(const QByteArray& line) = 0;
    /// The session has nothing more to do (ended or frozen by an error).
    virtual void sessionOver() = 0;
};

} // namespace mirel
