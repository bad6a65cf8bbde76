#include "platform/AsyncSmtpClient.h"

#include <QMetaObject>

namespace mirel {

AsyncSmtpClient::AsyncSmtpClient(QObject* parent) : QObject(parent) {
    m_worker.moveToThread(&m_thread);
    m_thread.setObjectName(QStringLiteral("smtp"));
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

AsyncSmtpClient::~AsyncSmtpClient() {
    cancel();
    m_thread.quit();
    m_thread.wait();
}

bool AsyncSmtpClient::send(const MailServer& server, const OutgoingMail& mail,
                           const QDateTime& now) {
    if (m_busy)
        return false;
    m_busy = true;
    m_client.clearAbort(); // the worker is idle: nothing races with this
    const quint64 generation = m_generation;
    QMetaObject::invokeMethod(
        &m_worker,
        [this, generation, server, mail, now] {
            const TransportError error = m_client.send(server, mail, now);
            QMetaObject::invokeMethod(
                this, [this, generation, error] { finish(generation, error); },
                Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
    return true;
}

void AsyncSmtpClient::finish(quint64 generation, const TransportError& error) {
    if (generation != m_generation)
        return;
    m_busy = false;
    m_lastFailure = error;
    if (error)
        Q_EMIT failed(error.number, error.description);
    else
        Q_EMIT sent();
}

void AsyncSmtpClient::cancel() {
    if (!m_busy)
        return;
    ++m_generation;
    m_busy = false;
    m_client.abort();
    // Wait for the worker so the next send starts on a quiet client.
    QMetaObject::invokeMethod(
        &m_worker, [] {}, Qt::BlockingQueuedConnection);
}

} // namespace mirel
