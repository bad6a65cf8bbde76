#pragma once
// One send/receive run: every account's POP3 mailbox in list order, then
// the outbox over SMTP. The machine only reacts to events (timer ticks and
// client outcomes) and answers through a SendReceivePort, so it never waits
// on the network itself.
//
// States (pending) and what ends them:
//   Connecting (2)  -> logged in: no mail -> LoggingOut at once; else the
//                      step timer starts the first fetch
//   Fetching (1)    -> stored, known or refused by the store; then Deleting
//                      when the account deletes, else the next fetch or
//                      LoggingOut
//   Deleting (10)   -> the next fetch or LoggingOut
//   LoggingOut (9)  -> Idle (0); the next account connects from here, or
//                      the outbox phase begins
//
// Invariants:
// - At most one client action is under way; every action but the log-out
//   of an empty mailbox and the connect of the next account is started
//   from a fresh step-timer tick, never from inside the completion.
// - A message is deleted from the server only after the store took it or
//   recognised it as known; one the store refused stays on the server.
// - A POP3 error freezes the machine: no further account, no outbox. The
//   window stays open to show why until the user closes it.
// - An SMTP error concerns one message: it stays in the outbox and the next
//   one is sent.
// - An account without a POP3 server ends the receive phase, the first one
//   included; an empty account list ends the session at once (there is no
//   server to send through either) instead of waiting for a completion that
//   never comes.
#include "mail/transport/EmailAccountList.h"
#include "mail/transport/SendReceivePort.h"
#include "mail/transport/SendReceiveTexts.h"

#include <QList>

namespace mirel {

/// The send/receive state machine, fed events, answering through a port.
class SendReceiveSession {
public:
    enum Pending { Idle = 0, Fetching = 1, Connecting = 2, LoggingOut = 9, Deleting = 10 };
    enum class Phase { Receiving, Sending, Ended, Frozen };

    /// outbox holds "From|ID" per outbox message, in sending order.
    SendReceiveSession(EmailAccountList accounts, QList<QByteArray> outbox, SendReceiveTexts texts,
                       SendReceivePort& port);

    /// Loads the first account and starts the start timer.
    void open();

    // Events.
    void startTimerTick();
    void stepTimerTick();
    /// The running POP3 action ended; messageCount is read after a log-in.
    void pop3Completed(int messageCount);
    void pop3Failed(int number, const QByteArray& description);
    void smtpSent();
    void smtpFailed(int number, const QByteArray& description);

    Phase phase() const { return m_phase; }
    int pending() const { return m_pending; }
    int accountNumber() const { return m_accountNumber; }
    int storedCount() const { return m_storedCount; }

private:
    bool loadNextAccount();
    void connectAccount();
    void startAction(int action);
    void afterMessage();
    void logOutNow();
    void accountDone();
    void beginSending();
    void sendNext();
    void reportSendError(int number, const QByteArray& description);
    void finishSend(bool ok);
    void end();
    QByteArray prefix() const;

    EmailAccountList m_accounts;
    QList<QByteArray> m_outbox;
    SendReceiveTexts m_texts;
    SendReceivePort& m_port;

    Phase m_phase = Phase::Receiving;
    qsizetype m_cursor = 0; // next account to load
    int m_accountNumber = 0;
    MailServer m_pop3;
    bool m_deleteFromServer = false;
    QByteArray m_title;
    int m_pending = Idle;
    int m_nextAction = 0;
    int m_messageNumber = 0;
    int m_messageCount = 0;
    int m_storedCount = 0;
    bool m_inTick = false;

    qsizetype m_outboxPos = 0; // the entry being sent
    qint32 m_sendingId = 0;
};

} // namespace mirel
