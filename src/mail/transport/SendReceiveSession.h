#pragma once
// One send/receive run: every account's POP3 mailbox in list order, then
// the outbox over SMTP. The machine only reacts to events (timer ticks and
// client outcomes) and answers through a SendReceivePort, so it never waits
// on the network itself.
//
// States (pending) and what ends them:
//   Connecting (2)  -> logged in: no mail -> LoggingOut at once; else the
//                      step timer starts the first fetch
//   Fetching (1)    -> the next fetch starts, then the store takes the one
//                      fetched (stored, known or refused); after the last
//                      one the store commits,
//                      then Deleting when the account deletes, else
//                      LoggingOut
//   Deleting (10)   -> the next delete or LoggingOut
//   LoggingOut (9)  -> Idle (0); the next account connects from here, or
//                      the outbox phase begins
//
// Invariants:
// - At most one client action is under way; every action but the log-out
//   of an empty mailbox, the connect of the next account and the fetch of
//   the next message is started from a fresh step-timer tick, never from
//   inside the completion. The next fetch starts inside the completion of
//   the last one, before the store gets that one, so that fetching and
//   storing overlap; the port holds back outcomes that arrive meanwhile.
// - A message is deleted from the server only after the store took it or
//   recognised it as known and committed that durably; one the store
//   refused, or whose group failed to commit, stays on the server. Stored
//   messages are committed in groups (every groupSize messages and after
//   the last), and the deletes are sent only after the last commit, so
//   everything is durable before the log-out lets the server delete.
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
#include <algorithm>

namespace mirel {

/// The send/receive state machine, fed events, answering through a port.
class SendReceiveSession {
public:
    enum Pending { Idle = 0, Fetching = 1, Connecting = 2, LoggingOut = 9, Deleting = 10 };
    enum class Phase { Receiving, Sending, Ended, Frozen };

    /// outbox holds "From|ID" per outbox message, in sending order.
    SendReceiveSession(EmailAccountList accounts, QList<QByteArray> outbox, SendReceiveTexts texts,
                       SendReceivePort& port);

    /// How many stored messages the store commits at once.
    void setGroupSize(int n) { m_groupSize = std::max(1, n); }

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
    void commitGroup();
    void keptOnServer(int n);
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
    int m_groupSize = 200;
    // Message numbers stored or known since the last commit (with whether
    // they were new), and the committed ones the server may delete.
    QList<std::pair<int, bool>> m_uncommitted;
    QList<int> m_deletable;
    qsizetype m_deleteCursor = 0;

    qsizetype m_outboxPos = 0; // the entry being sent
    qint32 m_sendingId = 0;
};

} // namespace mirel
