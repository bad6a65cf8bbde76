#include "mail/transport/SendReceiveRunner.h"

#include "mail/mime/ReceivedMessageStore.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"
#include "mail/transport/OutboxMessage.h"
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
    m_startTimer.setSingleShot(true);
    m_startTimer.setInterval(100);
    m_stepTimer.setSingleShot(true);
    m_stepTimer.setInterval(1);

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
    connect(m_pop3.get(), &AsyncPop3Client::failed, this,
            [this](int number, const QByteArray& description) {
                deliver(
                    [this, number, description] { m_session->pop3Failed(number, description); });
            });
    connect(m_smtp.get(), &AsyncSmtpClient::sent, this, [this] {
        if (!m_closed)
            m_session->smtpSent();
    });
    connect(m_smtp.get(), &AsyncSmtpClient::failed, this,
            [this](int number, const QByteArray& description) {
                if (!m_closed)
                    m_session->smtpFailed(number, description);
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

void SendReceiveRunner::startPop3(int action, const MailServer& server, int messageNumber) {
    MailServer s = server;
    if (m_tune)
        m_tune(s);
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
    MailServer s = server;
    if (m_tune)
        m_tune(s);
    if (!m_smtp->send(s, *mail, m_clock.now()))
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
