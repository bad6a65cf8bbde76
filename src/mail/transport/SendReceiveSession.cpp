#include "mail/transport/SendReceiveSession.h"

#include "mail/transport/AccountRecord.h"
#include "mail/transport/OutboxMessage.h"
#include "mail/transport/ServerAddress.h"
#include "platform/Pop3Client.h"
#include "settings/CommaList.h"

namespace mirel {
namespace {

// The client's action numbers.
constexpr int kConnect = 3;
constexpr int kLogout = 8;
constexpr int kDelete = 10;
constexpr int kFetch = 13;

QByteArray number(qint64 n) {
    return QByteArray::number(n);
}

} // namespace

SendReceiveSession::SendReceiveSession(EmailAccountList accounts, QList<QByteArray> outbox,
                                       SendReceiveTexts texts, SendReceivePort& port)
    : m_accounts(std::move(accounts)), m_outbox(std::move(outbox)), m_texts(std::move(texts)),
      m_port(port) {}

void SendReceiveSession::open() {
    if (!loadNextAccount()) {
        end();
        return;
    }
    m_port.startStartTimer();
}

bool SendReceiveSession::loadNextAccount() {
    if (m_cursor >= m_accounts.size())
        return false;
    const QByteArray& record = m_accounts.at(m_cursor);
    ++m_cursor;
    ++m_accountNumber;
    m_pop3 = ServerAddress::pop3For(record);
    m_deleteFromServer = AccountRecord::field(record, AccountRecord::DeleteFromServer) == "1";
    m_title = AccountRecord::name(record).toUpper();
    return true;
}

QByteArray SendReceiveSession::prefix() const {
    return "DS" + number(m_accountNumber) + ": ";
}

void SendReceiveSession::startTimerTick() {
    if (m_phase != Phase::Receiving || m_pending != Idle)
        return;
    if (m_pop3.host.isEmpty())
        beginSending();
    else
        connectAccount();
}

void SendReceiveSession::connectAccount() {
    m_pending = Connecting;
    m_messageNumber = 0;
    m_uncommitted.clear();
    m_deletable.clear();
    m_deleteCursor = 0;
    m_port.startPop3(kConnect, m_pop3, 0);
}

void SendReceiveSession::stepTimerTick() {
    if (m_phase != Phase::Receiving || m_inTick || m_nextAction == 0)
        return;
    m_inTick = true;
    const int action = m_nextAction;
    m_nextAction = 0;
    startAction(action);
    m_inTick = false;
}

void SendReceiveSession::startAction(int action) {
    switch (action) {
    case kFetch:
        ++m_messageNumber;
        m_pending = Fetching;
        break;
    case kDelete:
        m_pending = Deleting;
        m_port.startPop3(action, m_pop3, m_deletable.at(m_deleteCursor++));
        return;
    case kLogout:
        m_pending = LoggingOut;
        break;
    default:
        return;
    }
    m_port.startPop3(action, m_pop3, m_messageNumber);
}

void SendReceiveSession::pop3Completed(int messageCount) {
    if (m_phase != Phase::Receiving)
        return;
    switch (m_pending) {
    case Connecting:
        m_port.status(prefix() + m_texts.signedIn + " UFCA-" + m_title);
        m_port.status(prefix() + m_texts.ready);
        m_messageCount = messageCount;
        if (messageCount <= 0) {
            m_port.status(prefix() + m_texts.noMessages);
            logOutNow();
            return;
        }
        m_port.playSound(m_texts.incomingSound);
        m_pending = Fetching;
        m_messageNumber = 0;
        m_storedCount = 0;
        m_nextAction = kFetch;
        m_port.startStepTimer();
        return;
    case Fetching: {
        // The worker fetches the next message while this one is stored: the
        // client hands the fetched message over only on completion.
        const int fetched = m_messageNumber;
        const bool more = fetched < m_messageCount;
        if (more)
            startAction(kFetch);
        const SendReceivePort::Stored outcome = m_port.storeFetched();
        if (outcome == SendReceivePort::Stored::New) {
            ++m_storedCount;
            m_port.status(prefix() + m_texts.stored + " (" + number(m_storedCount) + ")");
        }
        if (outcome == SendReceivePort::Stored::Failed) {
            keptOnServer(fetched);
        } else {
            m_uncommitted.append({fetched, outcome == SendReceivePort::Stored::New});
            if (m_uncommitted.size() >= m_groupSize || m_port.commitDue())
                commitGroup();
        }
        if (!more) {
            afterMessage();
            m_port.startStepTimer();
        }
        return;
    }
    case Deleting:
        m_nextAction = m_deleteCursor < m_deletable.size() ? kDelete : kLogout;
        m_port.startStepTimer();
        return;
    case LoggingOut:
        accountDone();
        return;
    default:
        m_port.status("pvs: " + number(m_pending));
        return;
    }
}

void SendReceiveSession::afterMessage() {
    if (m_messageNumber < m_messageCount) {
        m_nextAction = kFetch;
        return;
    }
    commitGroup();
    m_nextAction = m_deletable.isEmpty() ? kLogout : kDelete;
}

void SendReceiveSession::commitGroup() {
    if (m_uncommitted.isEmpty())
        return;
    const bool ok = m_port.commitStored();
    for (const auto& [n, isNew] : std::as_const(m_uncommitted)) {
        if (ok && m_deleteFromServer)
            m_deletable.append(n);
        if (!ok && isNew)
            keptOnServer(n);
    }
    m_uncommitted.clear();
}

void SendReceiveSession::keptOnServer(int n) {
    // The next run fetches it again.
    const QByteArray line =
        prefix() + "Message " + number(n) + " could not be stored and stays on the server";
    m_port.status(line);
    m_port.log(line);
}

void SendReceiveSession::logOutNow() {
    m_pending = LoggingOut;
    m_port.startPop3(kLogout, m_pop3, m_messageNumber);
}

void SendReceiveSession::accountDone() {
    m_pending = Idle;
    m_port.status(prefix() + m_texts.done);
    m_pop3 = MailServer();
    loadNextAccount();
    if (m_pop3.host.isEmpty())
        beginSending();
    else
        connectAccount();
}

void SendReceiveSession::pop3Failed(int number, const QByteArray& description) {
    if (m_phase != Phase::Receiving)
        return;
    if (number == Pop3Client::kMessageTooLarge && m_pending == Fetching) {
        // One oversized message stays on the server and does not hold back
        // the rest of the mailbox.
        m_port.status(prefix() + description);
        m_port.log(prefix() + description);
        if (m_messageNumber < m_messageCount) {
            startAction(kFetch);
        } else {
            afterMessage();
            m_port.startStepTimer();
        }
        return;
    }
    // What came in whole is kept; without a log-out the server deletes
    // nothing.
    commitGroup();
    const QByteArray line = prefix() + description;
    m_port.status(line);
    m_port.log(line);
    m_nextAction = 0;
    m_phase = Phase::Frozen;
    m_port.sessionOver();
}

void SendReceiveSession::beginSending() {
    m_phase = Phase::Sending;
    if (m_outbox.isEmpty()) {
        end();
        return;
    }
    m_port.playSound(m_texts.outgoingSound);
    m_outboxPos = 0;
    sendNext();
}

void SendReceiveSession::sendNext() {
    while (m_outboxPos < m_outbox.size()) {
        const QByteArray& entry = m_outbox.at(m_outboxPos);
        const qsizetype bar = entry.indexOf('|');
        const QByteArrayView key =
            bar < 0 ? QByteArrayView(entry) : QByteArrayView(entry).first(bar);
        m_sendingId = bar < 0 ? 0 : qint32(leadingNumber(QByteArrayView(entry).sliced(bar + 1)));
        bool matched = false;
        const qsizetype account = OutboxMessage::sendingAccount(m_accounts, key, &matched);
        if (matched)
            m_port.status(m_texts.outbox + ": " + m_texts.ready);
        const TransportError error =
            m_port.startSend(m_sendingId, ServerAddress::smtpFor(m_accounts.at(account)));
        if (!error)
            return; // smtpSent or smtpFailed carries on
        reportSendError(error.number, error.description);
    }
    end();
}

void SendReceiveSession::smtpSent() {
    if (m_phase != Phase::Sending)
        return;
    finishSend(true);
    sendNext();
}

void SendReceiveSession::smtpFailed(int number, const QByteArray& description) {
    if (m_phase != Phase::Sending)
        return;
    reportSendError(number, description);
    sendNext();
}

void SendReceiveSession::reportSendError(int number, const QByteArray& description) {
    m_port.log("Error " + QByteArray::number(number) + ": " + description);
    m_port.status(m_texts.outbox + ": " + description);
    finishSend(false);
}

void SendReceiveSession::finishSend(bool ok) {
    m_port.status(m_texts.outbox + ": " + m_texts.sent + " (" + number(m_outboxPos + 1) + ")");
    m_port.markRead(m_sendingId);
    if (ok && m_port.moveToSent(m_sendingId))
        m_port.status(m_texts.outbox + ": " + m_texts.done);
    ++m_outboxPos;
}

void SendReceiveSession::end() {
    m_phase = Phase::Ended;
    m_port.sessionOver();
}

} // namespace mirel
