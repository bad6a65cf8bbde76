#include "mail/transport/SendReceiveSession.h"
#include "MailStoreFixture.h"
#include "platform/Pop3Client.h"

#include <QJsonArray>
#include <QStringList>
#include <deque>
#include <gtest/gtest.h>

using namespace mirel;
using namespace mirel::test;

namespace {

QByteArray account(const char* name, const char* pop3, bool deleteFlag, const char* smtp = "smtp.x",
                   const char* address = "a@x", const char* sender = "Ann") {
    return QByteArray("  ") + name + "|" + pop3 + "|user|secret|" + (deleteFlag ? "1" : "0") +
           "|0|" + smtp + "|" + address + "|" + sender + "|";
}

const SendReceiveTexts kTexts{"In",     "Ready", "None", "New", "Done",
                              "Outbox", "",      "Sent", "in",  "out"};

/// Records what the session asks for and plays the servers' part: each
/// mailbox is a list of store outcomes, one per message on the server.
class World : public SendReceivePort {
public:
    std::map<QByteArray, std::vector<Stored>> mailboxes; // by host
    // POP3 failure: the n-th POP3 action started (1-based) fails; the same
    // for the n-th commit of the store.
    int failPop3At = 0;
    // Messages the server announces above the size limit.
    std::set<int> tooLarge;
    int failCommitAt = 0;
    // SMTP: ids whose send fails, and ids that cannot even be read.
    std::set<qint32> smtpRefuses, unreadable;

    QList<QByteArray> lines;   // status lines
    QList<QByteArray> actions; // everything else, in order
    bool over = false;

    void run(SendReceiveSession& s) {
        s.open();
        for (int guard = 0; guard < 1000; ++guard) {
            if (m_startTimer) {
                m_startTimer = false;
                s.startTimerTick();
            } else if (m_stepTimer) {
                m_stepTimer = false;
                s.stepTimerTick();
            } else if (m_pop3Action) {
                const int a = std::exchange(m_pop3Action, 0);
                if (++m_pop3Count == failPop3At)
                    s.pop3Failed(7, "Connection refused");
                else if (a == 13 && tooLarge.count(m_message))
                    s.pop3Failed(Pop3Client::kMessageTooLarge, "too large");
                else {
                    m_fetched = m_message;
                    s.pop3Completed(a == 3 ? int(mailboxes[m_host].size()) : 0);
                }
            } else if (m_sending) {
                const qint32 id = std::exchange(m_sending, 0);
                if (smtpRefuses.count(id))
                    s.smtpFailed(550, "Recipient refused");
                else
                    s.smtpSent();
            } else {
                return;
            }
        }
        FAIL() << "the session never settled";
    }

    void startPop3(int action, const MailServer& server, int n) override {
        actions << "pop3 " + QByteArray::number(action) + " " + server.host + ":" +
                       QByteArray::number(server.port) + " #" + QByteArray::number(n);
        m_host = server.host;
        m_message = n;
        m_pop3Action = action;
    }
    void startStartTimer() override { m_startTimer = true; }
    void startStepTimer() override { m_stepTimer = true; }
    Stored storeFetched() override { return mailboxes[m_host].at(m_fetched - 1); }
    bool commitStored() override {
        actions << "commit";
        return ++m_commits != failCommitAt;
    }
    TransportError startSend(qint32 id, const MailServer& server) override {
        actions << "send " + QByteArray::number(id) + " via " + server.host;
        if (unreadable.count(id))
            return {-1, "unreadable"};
        m_sending = id;
        return {};
    }
    void markRead(qint32 id) override { actions << "read " + QByteArray::number(id); }
    bool moveToSent(qint32 id) override {
        actions << "move " + QByteArray::number(id);
        return true;
    }
    void status(const QByteArray& line) override { lines << line; }
    void playSound(const QByteArray& sound) override { actions << "sound " + sound; }
    void log(const QByteArray&) override {}
    void sessionOver() override {
        EXPECT_FALSE(over) << "told twice that the session is over";
        over = true;
    }

private:
    bool m_startTimer = false, m_stepTimer = false;
    int m_pop3Action = 0, m_pop3Count = 0, m_message = 0, m_commits = 0, m_fetched = 0;
    qint32 m_sending = 0;
    QByteArray m_host;
};

using S = SendReceivePort::Stored;

// Catches a wrong action order, an account skipped, a delete before the
// commit, a sender matched to the wrong account, a refused or unreadable
// outbox message that stops the rest or is moved to Sent, and accounts served
// past one without a POP3 server (the outbox must still go out).
TEST(SendReceiveSession, ServesEveryAccountThenSendsTheOutbox) {
    World w;
    w.smtpRefuses = {5};
    w.unreadable = {6};
    w.mailboxes["pop.a"] = {S::New, S::Known, S::New};
    w.mailboxes["pop.b"] = {};
    EmailAccountList accounts({account("home", "pop.a:995", true, "smtp.a", "a@x", "Ann"),
                               account("empty", "pop.b", false, "smtp.b", "b@x", "Bob"),
                               account("nopop", "", false, "smtp.c", "c@x", "Cy"),
                               account("after", "pop.d", false, "smtp.d", "d@x", "Di")});
    SendReceiveSession s(
        accounts, {"\"Bob\" <b@x>|4", "\"Ann\" <a@x>|5", "\"Ann\" <a@x>|6", "\"Nobody\" <n@x>|9"},
        kTexts, w);
    w.run(s);

    // Every message is deleted once the store committed it, the known one
    // included; the empty mailbox is logged out at once; receiving ends at
    // the account without a POP3 server; the unmatched sender goes out
    // through the last account.
    QByteArray expected = readAll(testData("mail/send-receive-session.txt"));
    expected = expected.mid(expected.indexOf("\nDS1") + 1);
    const qsizetype gap = expected.indexOf("\n\n");
    EXPECT_EQ(w.lines.join('\n').toStdString(), expected.left(gap).toStdString());
    EXPECT_EQ(w.actions.join('\n').toStdString(), expected.mid(gap + 2).trimmed().toStdString());
    EXPECT_TRUE(w.over);
    EXPECT_EQ(s.phase(), SendReceiveSession::Phase::Ended);
}

// Catches a delete sent before the store made the message durable, and a
// session that goes on to the next account or the outbox after a POP3 error
// at any step, or acts on events arriving after it ended; the rows are in
// tests/data/mail/session-deletes.json.
TEST(SendReceiveSession, DeletesOnlyWhatTheStoreTookOrKnew) {
    const QJsonArray rows = jsonTestData("mail/session-deletes.json")["rows"].toArray();
    ASSERT_FALSE(rows.isEmpty());
    for (const QJsonValue c : rows) {
        World w;
        for (const QChar o : c[2].toString())
            w.mailboxes["pop"].push_back(o == 'N' ? S::New : o == 'K' ? S::Known : S::Failed);
        w.failCommitAt = c[4].toInt();
        for (const QJsonValue n : c[5].toArray())
            w.tooLarge.insert(n.toInt());
        w.failPop3At = c[6].toInt();
        SendReceiveSession s(
            EmailAccountList({account("a", "pop", c[1].toBool()), account("b", "pop2", true)}),
            {"\"Ann\" <a@x>|1"}, kTexts, w);
        s.setGroupSize(2);
        w.run(s);
        const std::string what = c[0].toString().toStdString();
        EXPECT_EQ(w.lines.contains("DS1: Message 3 could not be stored and stays on the server"),
                  w.failCommitAt > 0)
            << what;
        QList<QByteArray> pop3;
        for (const QByteArray& a : w.actions)
            if (a.contains(" pop:") && !a.startsWith("pop3 3 "))
                pop3 << a.mid(5).replace(" pop:110", "");
        EXPECT_EQ(pop3.join(','), c[3].toString().toLatin1()) << what;
        const bool failed = w.failPop3At > 0;
        EXPECT_EQ(w.lines.last() == "DS1: Connection refused", failed) << what;
        EXPECT_EQ(s.phase(),
                  failed ? SendReceiveSession::Phase::Frozen : SendReceiveSession::Phase::Ended)
            << what;
        const QByteArray actions = w.actions.join(',');
        EXPECT_EQ(actions.contains("pop2") || actions.contains("send"), !failed) << what;
        EXPECT_TRUE(w.over) << what;
        // Late events change nothing.
        const qsizetype before = w.lines.size() + w.actions.size();
        s.pop3Completed(3);
        s.stepTimerTick();
        s.startTimerTick();
        EXPECT_EQ(w.lines.size() + w.actions.size(), before) << what;
    }
}

} // namespace
