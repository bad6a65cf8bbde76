#include "mail/transport/SendReceiveRunner.h"

#include "mail/mime/ReceivedMessageStore.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"
#include "mail/transport/OutboxMessage.h"
#include "mail/transport/ServerTrust.h"
#include "platform/AsyncPop3Client.h"
#include "platform/AsyncSmtpClient.h"
#include "platform/Clock.h"
#include "settings/DebugLog.h"

namespace mirel {

SendReceiveRunner::SendReceiveRunner(MailStore& store, IniHelpers& ini, const Clock& clock,
                                     EmailAccountList accounts, SendReceiveTexts texts,
                                     const DebugLog* debugLog, QObject* parent)
    : QObject(parent), m_store(store), m_ini(ini), m_clock(clock), m_debugLog(debugLog),
      m_accounts(std::move(accounts)), m_texts(std::move(texts)),
      m_pop3(std::make_unique<AsyncPop3Client>()), m_smtp(std::make_unique<AsyncSmtpClient>()) {
    // Both timers only move the next step to a fresh turn of the event
    // loop, so the window paints and answers between steps. The network
    // runs on the POP3 worker, so nothing is gained by waiting longer: a
    // millisecond per step would be a second per thousand messages.
    m_startTimer.setSingleShot(true);
    m_startTimer.setInterval(0);
    m_stepTimer.setSingleShot(true);
    m_stepTimer.setInterval(0);

    const bool tracing = m_debugLog && m_debugLog->enabled();
    m_pop3->setTraceEnabled(tracing);
    m_smtp->setTraceEnabled(tracing);
    connect(m_pop3.get(), &AsyncPop3Client::traced, this, [this](const QByteArray& t) { log(t); });
    connect(m_smtp.get(), &AsyncSmtpClient::traced, this, [this](const QByteArray& t) { log(t); });

    // The size being transferred, once per transfer: the clients report
    // progress many times a second, which would flood the log.
    if (tracing)
        connect(m_pop3.get(), &AsyncPop3Client::progress, this, [this](qint64, qint64 total) {
            if (total > 0 && total != m_loggedTotal)
                log(QByteArray::number(m_loggedTotal = total));
        });
    connect(&m_startTimer, &QTimer::timeout, this, [this] {
        if (!m_closed)
            m_session->startTimerTick();
    });
    connect(&m_stepTimer, &QTimer::timeout, this, [this] {
        if (!m_closed)
            m_session->stepTimerTick();
    });
    connect(m_pop3.get(), &AsyncPop3Client::completed, this,
            [this](int) { deliver([this] { m_session->pop3Completed(m_pop3->messageCount()); }); });
    connect(m_pop3.get(), &AsyncPop3Client::failed, this, [this](int number, const QByteArray&) {
        if (m_closed)
            return;
        const TransportError error = m_pop3->lastFailure();
        const MailServer used = prepared(m_pop3Server);
        if (askedAndTrusted(used, error)) {
            if (!m_closed)
                startPop3(m_pop3Action, m_pop3Server, m_pop3->messageNumber());
            return;
        }
        const QByteArray words = failureWords(used, error);
        deliver([this, number, words] { m_session->pop3Failed(number, words); });
    });
    connect(m_smtp.get(), &AsyncSmtpClient::sent, this, [this] {
        if (!m_closed)
            m_session->smtpSent();
    });
    connect(m_smtp.get(), &AsyncSmtpClient::failed, this, [this](int number, const QByteArray&) {
        if (m_closed)
            return;
        const TransportError error = m_smtp->lastFailure();
        const MailServer used = prepared(m_smtpServer);
        if (askedAndTrusted(used, error)) {
            if (m_closed)
                return;
            const TransportError again =
                SendOutboxMessage(MailStore::kOutbox, m_sendingId, m_smtpServer);
            if (again)
                m_session->smtpFailed(again.number, again.description);
            return;
        }
        if (!m_closed)
            m_session->smtpFailed(number, failureWords(used, error));
    });
}

void SendReceiveRunner::deliver(std::function<void()> event) {
    // A message box the store shows runs a nested event loop, which could
    // hand the session the next fetch's outcome while it is still storing
    // the last one: such outcomes wait until the session has returned.
    m_held.push_back(std::move(event));
    if (m_inSession)
        return;
    m_inSession = true;
    while (!m_held.empty() && !m_closed) {
        const std::function<void()> next = std::move(m_held.front());
        m_held.pop_front();
        next();
    }
    m_inSession = false;
}

SendReceiveRunner::~SendReceiveRunner() {
    close();
}

void SendReceiveRunner::open() {
    SendReceivePort& port = *this;
    m_duplicates = std::make_unique<DuplicateDetector>(m_store.incomingRecordPath());
    // Only the last group can have been stored without its record.
    m_duplicates->adoptStored(m_store.recentHeaders(MailStore::kInbox, m_groupSize));
    m_received = std::make_unique<ReceivedMessageStore>(m_store, *m_duplicates);
    m_received->setGrouped(true);
    m_session =
        std::make_unique<SendReceiveSession>(m_accounts, m_store.FillOutboxList(), m_texts, port);
    m_session->setGroupSize(m_groupSize);
    m_sinceCommit.start();
    m_session->open();
}

void SendReceiveRunner::close() {
    if (m_closed)
        return;
    m_closed = true;
    m_startTimer.stop();
    m_stepTimer.stop();
    // Before the log-out commits the server's deletions.
    if (m_received)
        m_received->commit();
    m_pop3->close();
    m_smtp->cancel();
}

MailServer SendReceiveRunner::prepared(const MailServer& server) const {
    MailServer s = server;
    if (!m_trustFile.isEmpty())
        ServerTrust(m_trustFile).apply(s);
    if (m_tune)
        m_tune(s);
    return s;
}

bool SendReceiveRunner::askedAndTrusted(const MailServer& used, const TransportError& error) {
    const ServerTrust::Question q = ServerTrust::questionFor(used, error);
    if (q == ServerTrust::Question::None || !m_ask || m_trustFile.isEmpty())
        return false;
    const QByteArray asked = ServerTrust::sectionFor(used) + ' ' + QByteArray::number(int(q)) +
                             ' ' + error.peerFingerprint;
    if (m_asked.contains(asked))
        return false; // asked in this run already: no second question
    m_asked.insert(asked);
    if (!m_ask(ServerTrust::title(q), ServerTrust::text(used, q, error.peerFingerprint)))
        return false;
    if (!ServerTrust(m_trustFile).remember(used, q, error.peerFingerprint)) {
        log("Cannot write " + m_trustFile.toUtf8());
        return false;
    }
    log("Trusted " + ServerTrust::sectionFor(used) +
        (q == ServerTrust::Question::NoTls ? " without TLS" : " " + error.peerFingerprint));
    return true;
}

QByteArray SendReceiveRunner::failureWords(const MailServer& used, const TransportError& error) {
    log("Error " + QByteArray::number(error.number) + ": " + error.description);
    return error.inWords(used.host, used.port);
}

void SendReceiveRunner::startPop3(int action, const MailServer& server, int messageNumber) {
    m_pop3Server = server;
    m_pop3Action = action;
    const MailServer s = prepared(server);
    m_pop3->setServer(s);
    m_pop3->setMessageNumber(messageNumber);
    if (!m_pop3->start(action)) {
        // Only a bug could get here (the session runs one action at a time);
        // a frozen session is better than one waiting for ever.
        QTimer::singleShot(0, this, [this] {
            if (!m_closed)
                m_session->pop3Failed(-1, "The mail client is busy");
        });
    }
}

SendReceivePort::Stored SendReceiveRunner::storeFetched() {
    switch (m_received->store(m_pop3->message(), MailStore::kInbox)) {
    case ReceivedMessageStore::Result::Stored:
        return Stored::New;
    case ReceivedMessageStore::Result::Duplicate:
        return Stored::Known;
    case ReceivedMessageStore::Result::Failed:
        break;
    }
    return Stored::Failed;
}

bool SendReceiveRunner::commitStored() {
    m_sinceCommit.start();
    return m_received->commit();
}

std::optional<OutgoingMail> SendReceiveRunner::readOutboxMessage(MailStore& store,
                                                                 QByteArrayView folder, qint32 id) {
    const std::optional<IndexRow> index = store.readIndexRow(folder, id);
    if (!index)
        return std::nullopt;
    OutboxMessage::Stored stored;
    stored.from = index->from;
    stored.to = index->to;
    stored.subject = index->subject;
    if (const std::optional<MessageRow> data = store.readMessageRow(folder, id)) {
        stored.text = data->text;
        stored.html = data->html;
        stored.headers = data->headers;
    }
    if (index->attachments > 0) {
        for (const AttachmentRow& row : store.readAttachments(folder, id))
            stored.attachments.append({row.filename, QString(), row.data});
    }
    return OutboxMessage::toOutgoing(stored);
}

TransportError SendReceiveRunner::SendOutboxMessage(QByteArrayView folder, qint32 id,
                                                    const MailServer& server) {
    const std::optional<OutgoingMail> mail = readOutboxMessage(m_store, folder, id);
    if (!mail)
        return {-1, "Message " + QByteArray::number(id) + " could not be read from the outbox"};
    m_smtpServer = server;
    m_sendingId = id;
    if (!m_smtp->send(prepared(server), *mail, m_clock.now()))
        return {-1, "The mail client is busy"};
    return TransportError::ok();
}

TransportError SendReceiveRunner::startSend(qint32 id, const MailServer& server) {
    return SendOutboxMessage(MailStore::kOutbox, id, server);
}

void SendReceiveRunner::markRead(qint32 id) {
    m_store.setReaded(MailStore::kOutbox, id, 1);
}

bool SendReceiveRunner::moveToSent(qint32 id) {
    return m_store.MoveMessage(MailStore::kOutbox, MailStore::kSent, id).has_value();
}

void SendReceiveRunner::log(const QByteArray& line) {
    if (m_debugLog)
        m_debugLog->WriteDebugLog(line);
}

void SendReceiveRunner::sessionOver() {
    m_over = true;
    Q_EMIT over();
}

} // namespace mirel
