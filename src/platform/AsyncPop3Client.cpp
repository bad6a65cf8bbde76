#include "platform/AsyncPop3Client.h"

#include <QMetaObject>

namespace mirel {

AsyncPop3Client::AsyncPop3Client(QObject* parent) : QObject(parent) {
    m_worker.moveToThread(&m_thread);
    m_thread.setObjectName(QStringLiteral("pop3"));
    m_thread.start();
    m_client.setTrace([this](QByteArrayView line) {
        if (m_traceEnabled)
            QMetaObject::invokeMethod(
                this, [this, text = line.toByteArray()] { Q_EMIT traced(text); },
                Qt::QueuedConnection);
    });
    m_client.setProgress([this](qint64 done, qint64 total) {
        QMetaObject::invokeMethod(
            this, [this, done, total] { Q_EMIT progress(done, total); }, Qt::QueuedConnection);
    });
}

AsyncPop3Client::~AsyncPop3Client() {
    close();
    m_thread.quit();
    m_thread.wait();
}

bool AsyncPop3Client::start(int action) {
    if (m_busy)
        return false;
    if (action != Connect && action != Logout && action != Delete && action != Fetch)
        return false;
    m_busy = true;
    const quint64 generation = m_generation;
    QMetaObject::invokeMethod(
        &m_worker,
        [this, action, generation, server = m_server, n = m_messageNumber] {
            run(action, server, n);
            const TransportError error = m_lastError;
            QMetaObject::invokeMethod(
                this, [this, generation, action, error] { finish(generation, action, error); },
                Qt::QueuedConnection);
            if (action == Fetch && !error && n < m_client.messageCount())
                readAhead(n + 1);
        },
        Qt::QueuedConnection);
    return true;
}

void AsyncPop3Client::run(int action, const MailServer& server, int messageNumber) {
    switch (action) {
    case Connect:
        m_ahead = {};
        m_lastError = m_client.connect(server);
        m_fetchedCount = m_client.messageCount();
        break;
    case Fetch:
        if (m_ahead.number == messageNumber) {
            m_fetched = std::move(m_ahead.message);
            m_lastError = m_ahead.error;
        } else {
            m_lastError = m_client.fetch(messageNumber, m_fetched);
        }
        m_ahead = {};
        break;
    case Delete:
        m_lastError = m_client.remove(messageNumber);
        break;
    case Logout:
        m_ahead = {};
        m_client.logout();
        m_lastError = {};
        break;
    }
}

void AsyncPop3Client::readAhead(int n) {
    m_ahead.number = n;
    m_ahead.error = m_client.fetch(n, m_ahead.message);
}

void AsyncPop3Client::finish(quint64 generation, int action, const TransportError& error) {
    if (generation != m_generation)
        return;
    m_busy = false;
    m_lastFailure = error;
    if (error) {
        Q_EMIT failed(error.number, error.description);
        return;
    }
    if (action == Connect)
        m_count = m_fetchedCount;
    else if (action == Fetch)
        m_message = m_fetched;
    Q_EMIT completed(action);
}

void AsyncPop3Client::close() {
    ++m_generation;
    m_busy = false;
    m_client.abort();
    // Runs after whatever the worker is doing now, which the abort ends soon.
    QMetaObject::invokeMethod(
        &m_worker,
        [this] {
            m_ahead = {};
            m_client.logout();
        },
        Qt::BlockingQueuedConnection);
}

} // namespace mirel
