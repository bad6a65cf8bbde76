#pragma once
// Sends one message over SMTP with libcurl. The message is built with
// curl's MIME support: the plain and HTML bodies as alternatives
// (quoted-printable, windows-1252), attachments after them (base64), and
// the header lines made here: From, To, Cc, Subject, Date, Message-ID and
// the caller's further headers. Blind copies go to the envelope only and
// never into a header.
//
// TLS: port 465 speaks TLS from the first byte; any other port uses
// STARTTLS when the server offers it. Certificates are always checked, and
// a failed check is an error.
#include "platform/CurlEasy.h"
#include "platform/OutgoingMail.h"

#include <QDateTime>

namespace mirel {

/// Blocking SMTP sender; one message per send().
class SmtpClient {
  public:
    static constexpr int kImplicitTlsPort = 465;

    void setTrace(CurlEasy::Trace trace) { m_easy.setTrace(std::move(trace)); }
    void setProgress(CurlEasy::Progress progress) { m_easy.setProgress(std::move(progress)); }
    /// From another thread: the running send (or the next, if none runs)
    /// fails soon with an abort error, until clearAbort().
    void abort() { m_easy.abort(); }
    void clearAbort() { m_easy.clearAbort(); }

    /// Logs in when server.userName is set. A refused recipient fails the
    /// whole message (nothing is sent to anyone).
    TransportError send(const MailServer& server, const OutgoingMail& mail, const QDateTime& now);

    static QByteArray urlFor(const MailServer& server);
    /// The header lines send() gives the message (without the MIME ones).
    static QList<QByteArray> headerLines(const OutgoingMail& mail, const QDateTime& now);

  private:
    CurlEasy m_easy;
};

} // namespace mirel
