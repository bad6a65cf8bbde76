#pragma once
// Runs a SendReceiveSession against the real world: the asynchronous POP3
// and SMTP clients, two one-shot timers on the calling thread, the mail
// store and the debug log. Everything it reports (status lines, sounds, the
// end) leaves as signals, so a window only has to show them.
//
// The debug log gets the clients' protocol traces only while it is on, and
// those traces carry no secrets; nothing here writes a password.
#include "mail/mime/ReceivedMessageStore.h"
#include "mail/transport/SendReceivePort.h"
#include "mail/transport/SendReceiveSession.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>

namespace mirel {

class AsyncPop3Client;
class AsyncSmtpClient;
class Clock;
class DebugLog;
class DuplicateDetector;
class IniHelpers;
class MailStore;
struct OutgoingMail;

/// One send/receive run over the real clients and the store.
class SendReceiveRunner : public QObject, private SendReceivePort {
    Q_OBJECT
public:
    SendReceiveRunner(MailStore& store, IniHelpers& ini, const Clock& clock,
                      EmailAccountList accounts, SendReceiveTexts texts,
                      const DebugLog* debugLog = nullptr, QObject* parent = nullptr);
    ~SendReceiveRunner() override;

    /// Applied to every server before a client gets it (time-outs, a private CA).
    void setServerTuning(std::function<void(MailServer&)> tune) { m_tune = std::move(tune); }
    /// Where the user's trust decisions are kept ("servers.ini"), and how a
    /// question about a server is put to the user (title, text) -> yes.
    /// Without a way to ask, such a server is refused at once: a question
    /// nobody sees must not hold up the session.
    void setServerTrust(QString file, std::function<bool(const QString&, const QString&)> ask) {
        m_trustFile = std::move(file);
        m_ask = std::move(ask);
    }

    /// How many received messages are committed at once (see the session).
    void setGroupSize(int n) { m_groupSize = n; }

    /// Reads the outbox and starts the session.
    void open();
    /// Stops whatever runs (the POP3 session is logged out) and drops every
    /// later outcome. Safe to call twice.
    void close();

    const SendReceiveSession* session() const { return m_session.get(); }
    bool isOver() const { return m_over; }

    /// The outbox message as the SMTP client takes it; nothing when its
    /// index row cannot be read.
    static std::optional<OutgoingMail> readOutboxMessage(MailStore& store, QByteArrayView folder,
                                                         qint32 id);

Q_SIGNALS:
    void statusLine(const QByteArray& line);
    void soundRequested(const QByteArray& sound);
    void over();

private:
    // SendReceivePort
    void startPop3(int action, const MailServer& server, int messageNumber) override;
    void startStartTimer() override { m_startTimer.start(); }
    void startStepTimer() override { m_stepTimer.start(); }
    Stored storeFetched() override;
    bool commitStored() override;
    bool commitDue() override { return m_sinceCommit.elapsed() > kCommitMs; }
    TransportError startSend(qint32 id, const MailServer& server) override;
    void markRead(qint32 id) override;
    bool moveToSent(qint32 id) override;
    void status(const QByteArray& line) override { Q_EMIT statusLine(line); }
    void playSound(const QByteArray& sound) override { Q_EMIT soundRequested(sound); }
    void log(const QByteArray& line) override;
    void sessionOver() override;

    /// Hands a POP3 outcome to the session once it is not inside another.
    void deliver(std::function<void()> event);

    /// SendOutboxMessage: reads outbox message id and hands it to the SMTP client.
    TransportError SendOutboxMessage(QByteArrayView folder, qint32 id, const MailServer& server);
    /// The server with the user's trust decisions and the tuning applied.
    MailServer prepared(const MailServer& server) const;
    /// After a failure about trust: asks once per server and question, and
    /// true when the user said yes (the action is then tried again).
    bool askedAndTrusted(const MailServer& used, const TransportError& error);
    /// The failure in words, logged with its technical detail.
    QByteArray failureWords(const MailServer& used, const TransportError& error);

    MailStore& m_store;
    IniHelpers& m_ini;
    const Clock& m_clock;
    const DebugLog* m_debugLog;
    EmailAccountList m_accounts;
    SendReceiveTexts m_texts;
    std::function<void(MailServer&)> m_tune;
    QString m_trustFile;
    std::function<bool(const QString&, const QString&)> m_ask;
    QSet<QByteArray> m_asked; // server + question, asked in this run
    MailServer m_pop3Server;  // as the running POP3 action got it
    int m_pop3Action = 0;
    MailServer m_smtpServer; // as the running send got it
    qint32 m_sendingId = 0;
    std::unique_ptr<AsyncPop3Client> m_pop3;
    std::unique_ptr<AsyncSmtpClient> m_smtp;
    std::unique_ptr<SendReceiveSession> m_session;
    std::unique_ptr<DuplicateDetector> m_duplicates;
    std::unique_ptr<ReceivedMessageStore> m_received;
    int m_groupSize = ReceivedMessageStore::kGroupMessages;
    static constexpr qint64 kCommitMs = ReceivedMessageStore::kGroupMs;
    QElapsedTimer m_sinceCommit;
    QTimer m_startTimer, m_stepTimer;
    bool m_closed = false;
    bool m_inSession = false;
    std::deque<std::function<void()>> m_held;
    bool m_over = false;
    qint64 m_loggedTotal = 0;
};

} // namespace mirel
