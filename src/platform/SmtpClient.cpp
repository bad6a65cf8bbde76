#include "platform/SmtpClient.h"

#include "platform/MailHeaders.h"

#include <QFileInfo>
#include <curl/curl.h>
#include <memory>

namespace mirel {
namespace {

struct SlistDeleter {
    void operator()(curl_slist* l) const { curl_slist_free_all(l); }
};
using Slist = std::unique_ptr<curl_slist, SlistDeleter>;

struct MimeDeleter {
    void operator()(curl_mime* m) const { curl_mime_free(m); }
};
using Mime = std::unique_ptr<curl_mime, MimeDeleter>;

void append(Slist& list, const QByteArray& line) {
    curl_slist* grown = curl_slist_append(list.get(), line.constData());
    if (grown) {
        (void)list.release();
        list.reset(grown);
    }
}

bool equalsNoCase(const QByteArray& a, const char* b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Headers the MIME structure or the envelope owns; a caller's copy of them
// would contradict it (and a Bcc line would betray the blind copies).
bool isReserved(const QByteArray& name) {
    for (const char* r : {"from", "to", "cc", "bcc", "subject", "date", "message-id",
                          "mime-version", "content-type", "content-transfer-encoding"})
        if (equalsNoCase(name, r))
            return true;
    return false;
}

bool isHeaderName(const QByteArray& name) {
    if (name.isEmpty())
        return false;
    for (char c : name)
        if (uchar(c) <= 0x20 || uchar(c) >= 0x7F || c == ':')
            return false;
    return true;
}

bool hasHeader(const OutgoingMail& mail, const char* name) {
    for (const auto& h : mail.headers)
        if (equalsNoCase(h.first.trimmed(), name))
            return true;
    return false;
}

// RFC 2231 for names outside ASCII, so any reader gets the name back.
QByteArray dispositionFor(const QByteArray& fileName) {
    bool plain = true;
    for (char c : fileName)
        if (uchar(c) < 0x20 || uchar(c) >= 0x7F || c == '"' || c == '\\')
            plain = false;
    if (plain)
        return "Content-Disposition: attachment; filename=\"" + fileName + '"';
    return "Content-Disposition: attachment; filename*=windows-1252''" +
           fileName.toPercentEncoding("!#$&+-.^_`|~");
}

void addTextPart(curl_mime* mime, const QByteArray& body, const char* type) {
    curl_mimepart* part = curl_mime_addpart(mime);
    curl_mime_data(part, body.constData(), size_t(body.size()));
    curl_mime_type(part, type);
    curl_mime_encoder(part, "quoted-printable");
}

} // namespace

QByteArray SmtpClient::urlFor(const MailServer& server) {
    const bool tls = server.tls == MailServer::Tls::Implicit ||
                     (server.tls == MailServer::Tls::ByPort && server.port == kImplicitTlsPort);
    const QByteArray host = server.host.contains(':') ? '[' + server.host + ']' : server.host;
    return (tls ? "smtps://" : "smtp://") + host + ':' + QByteArray::number(server.port);
}

QList<QByteArray> SmtpClient::headerLines(const OutgoingMail& mail, const QDateTime& now) {
    const QList<Mailbox> from = MailHeaders::parseAddressList(mail.from);
    QList<QByteArray> lines;
    if (!hasHeader(mail, "date"))
        lines.append("Date: " + MailHeaders::date(now));
    lines.append("From: " + MailHeaders::formatAddressList(from));
    if (const auto to = MailHeaders::parseAddressList(mail.to); !to.isEmpty())
        lines.append("To: " + MailHeaders::formatAddressList(to));
    if (const auto cc = MailHeaders::parseAddressList(mail.cc); !cc.isEmpty())
        lines.append("Cc: " + MailHeaders::formatAddressList(cc));
    lines.append("Subject: " + MailHeaders::encodeText(mail.subject));
    if (!hasHeader(mail, "message-id"))
        lines.append("Message-ID: " +
                     MailHeaders::messageId(from.isEmpty() ? QByteArray() : from[0].address, now));
    for (const auto& [rawName, value] : mail.headers) {
        const QByteArray name = rawName.trimmed();
        if (!isHeaderName(name))
            continue;
        // A stored Date or Message-ID stands instead of ours (left out above).
        if (isReserved(name) && !equalsNoCase(name, "date") && !equalsNoCase(name, "message-id"))
            continue;
        lines.append(name + ": " + MailHeaders::encodeText(value.trimmed()));
    }
    return lines;
}

TransportError SmtpClient::send(const MailServer& server, const OutgoingMail& mail,
                                const QDateTime& now) {
    const QList<Mailbox> from = MailHeaders::parseAddressList(mail.from);
    if (from.isEmpty())
        return {CURLE_SEND_ERROR, "The message has no sender address"};
    Slist recipients;
    int count = 0;
    for (const QByteArray* list : {&mail.to, &mail.cc, &mail.bcc})
        for (const Mailbox& m : MailHeaders::parseAddressList(*list)) {
            append(recipients, '<' + m.address + '>');
            ++count;
        }
    if (count == 0)
        return {CURLE_SEND_ERROR, "The message has no recipient"};

    for (const OutgoingMail::Attachment& a : mail.attachments)
        if (!a.path.isEmpty() && !QFileInfo(a.path).isReadable())
            return {CURLE_READ_ERROR, "Cannot read the attachment " + a.path.toUtf8()};

    m_easy.reset();
    m_easy.configure(server);
    CURL* c = m_easy.handle();
    curl_easy_setopt(c, CURLOPT_URL, urlFor(server).constData());
    if (!urlFor(server).startsWith("smtps"))
        m_easy.requireStartTls(server);
    curl_easy_setopt(c, CURLOPT_MAIL_FROM, ('<' + from[0].address + '>').constData());
    curl_easy_setopt(c, CURLOPT_MAIL_RCPT, recipients.get());

    Slist headers;
    for (const QByteArray& line : headerLines(mail, now))
        append(headers, line);
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, headers.get());

    // The message is multipart/mixed: the bodies first (plain and HTML as
    // one multipart/alternative part when there are both), then the
    // attachments.
    Mime mime(curl_mime_init(c));
    const bool both = !mail.text.isEmpty() && !mail.html.isEmpty();
    curl_mime* bodies = mime.get();
    Mime alternative;
    if (both) {
        alternative.reset(curl_mime_init(c));
        bodies = alternative.get();
    }
    if (!mail.text.isEmpty() || mail.html.isEmpty())
        addTextPart(bodies, mail.text, "text/plain; charset=windows-1252");
    if (!mail.html.isEmpty())
        addTextPart(bodies, mail.html, "text/html; charset=windows-1252");
    if (alternative) {
        curl_mimepart* part = curl_mime_addpart(mime.get());
        curl_mime_subparts(part, alternative.release()); // now owned by mime
        curl_mime_type(part, "multipart/alternative");
    }
    for (const OutgoingMail::Attachment& a : mail.attachments) {
        curl_mimepart* part = curl_mime_addpart(mime.get());
        if (!a.path.isEmpty()) {
            curl_mime_filedata(part, a.path.toLocal8Bit().constData());
            curl_mime_filename(part, nullptr); // the name comes from our own header
        } else {
            curl_mime_data(part, a.data.constData(), size_t(a.data.size()));
        }
        curl_mime_type(part, "application/octet-stream");
        curl_mime_encoder(part, "base64");
        curl_slist* partHeaders =
            curl_slist_append(nullptr, dispositionFor(a.fileName).constData());
        curl_mime_headers(part, partHeaders, 1);
    }
    curl_easy_setopt(c, CURLOPT_MIMEPOST, mime.get());

    TransportError e = m_easy.perform();
    // The handle must not outlive the lists and the MIME tree it points to.
    m_easy.reset();
    return e;
}

} // namespace mirel
