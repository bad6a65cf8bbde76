#include "platform/CurlEasy.h"

#include "platform/ProtocolTrace.h"

#include <cctype>
#include <cstring>
#include <curl/curl.h>
#include <mutex>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

namespace mirel {
namespace {

void globalInit() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

// "-ERR ..." in POP3, a 4xx or 5xx reply in SMTP.
bool isRefusal(const QByteArray& reply) {
    if (reply.startsWith("-ERR"))
        return true;
    return reply.size() >= 3 && (reply[0] == '4' || reply[0] == '5') &&
           std::isdigit(uchar(reply[1])) && std::isdigit(uchar(reply[2]));
}

// The handle whose transfer runs on this thread: the certificate check
// below has no other way back to it.
thread_local CurlEasy* t_performing = nullptr;

} // namespace

struct CurlCallbacks {
    // Sees the server's certificate before anything is sent: records its
    // fingerprint (so a refusal can name it) and, for a server the user
    // accepted, trusts exactly that certificate instead of the system's CAs.
    static int onVerify(int preverifyOk, X509_STORE_CTX* store) {
        CurlEasy* me = t_performing;
        X509* leaf = X509_STORE_CTX_get0_cert(store);
        QByteArray fingerprint;
        unsigned char md[EVP_MAX_MD_SIZE];
        unsigned n = 0;
        if (leaf && X509_digest(leaf, EVP_sha256(), md, &n))
            fingerprint = QByteArray(reinterpret_cast<const char*>(md), int(n)).toHex();
        if (!me)
            return preverifyOk;
        if (!fingerprint.isEmpty())
            me->m_peerFingerprint = fingerprint;
        if (me->m_pin.isEmpty())
            return preverifyOk;
        if (fingerprint != me->m_pin) {
            X509_STORE_CTX_set_error(store, X509_V_ERR_CERT_REJECTED);
            return 0;
        }
        X509_STORE_CTX_set_error(store, X509_V_OK);
        return 1;
    }

    static CURLcode onSslContext(CURL*, void* sslContext, void*) {
        SSL_CTX_set_verify(static_cast<SSL_CTX*>(sslContext), SSL_VERIFY_PEER, &onVerify);
        return CURLE_OK;
    }

    static size_t onHeader(char* data, size_t size, size_t count, void* self) {
        QByteArray line(data, qsizetype(size * count));
        while (line.endsWith('\n') || line.endsWith('\r'))
            line.chop(1);
        static_cast<CurlEasy*>(self)->m_replies.append(line);
        return size * count;
    }

    static int onDebug(CURL*, int type, char* data, size_t size, void* self) {
        auto* me = static_cast<CurlEasy*>(self);
        if (!me->m_trace)
            return 0;
        const QByteArrayView bytes(data, qsizetype(size));
        switch (curl_infotype(type)) {
        case CURLINFO_TEXT:
            me->m_trace("* " + bytes.trimmed().toByteArray());
            break;
        case CURLINFO_HEADER_IN:
            me->m_trace("< " + bytes.trimmed().toByteArray());
            break;
        case CURLINFO_HEADER_OUT:
            me->m_trace("> " + redactSentLine(bytes));
            break;
        default: // message bodies stay out of the trace
            break;
        }
        return 0;
    }

    static int onProgress(void* self, curl_off_t dlTotal, curl_off_t dlNow, curl_off_t ulTotal,
                          curl_off_t ulNow) {
        auto* me = static_cast<CurlEasy*>(self);
        const qint64 done = dlNow ? dlNow : ulNow;
        if (me->m_progress && done && done != me->m_lastDone) {
            me->m_lastDone = done;
            me->m_progress(done, dlNow ? dlTotal : ulTotal);
        }
        return me->m_abort ? 1 : 0;
    }
};

CurlEasy::CurlEasy() {
    globalInit();
    init();
}

CurlEasy::~CurlEasy() {
    if (m_curl)
        curl_easy_cleanup(m_curl);
}

void CurlEasy::init() {
    m_curl = curl_easy_init();
    m_errorBuffer[0] = 0;
}

void CurlEasy::reset() {
    if (m_curl)
        curl_easy_cleanup(m_curl);
    init();
}

void CurlEasy::configure(const MailServer& server) {
    CURL* c = m_curl;
    curl_easy_setopt(c, CURLOPT_ERRORBUFFER, m_errorBuffer);
    curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, long(server.connectTimeoutSeconds));
    // A stalled server must not hold the session for ever; a slow but
    // moving transfer of a big message may take as long as it needs.
    curl_easy_setopt(c, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(c, CURLOPT_LOW_SPEED_TIME, long(server.stallTimeoutSeconds));
    curl_easy_setopt(c, CURLOPT_SERVER_RESPONSE_TIMEOUT, long(server.stallTimeoutSeconds));
    // A pinned certificate replaces the CA and host-name checks (a home
    // server's certificate rarely names the address it is reached by); the
    // check in onVerify still refuses any other certificate.
    m_pin = server.pinnedFingerprint.toLower();
    curl_easy_setopt(c, CURLOPT_SSL_VERIFYPEER, m_pin.isEmpty() ? 1L : 0L);
    curl_easy_setopt(c, CURLOPT_SSL_VERIFYHOST, m_pin.isEmpty() ? 2L : 0L);
    curl_easy_setopt(c, CURLOPT_SSL_CTX_FUNCTION, &CurlCallbacks::onSslContext);
    // A resumed TLS session skips the certificate check.
    curl_easy_setopt(c, CURLOPT_SSL_SESSIONID_CACHE, 0L);
    if (!server.caFile.isEmpty())
        curl_easy_setopt(c, CURLOPT_CAINFO, server.caFile.toLocal8Bit().constData());
    curl_easy_setopt(c, CURLOPT_HEADERFUNCTION, &CurlCallbacks::onHeader);
    curl_easy_setopt(c, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(c, CURLOPT_DEBUGFUNCTION, &CurlCallbacks::onDebug);
    curl_easy_setopt(c, CURLOPT_DEBUGDATA, this);
    curl_easy_setopt(c, CURLOPT_VERBOSE, m_trace ? 1L : 0L);
    curl_easy_setopt(c, CURLOPT_XFERINFOFUNCTION, &CurlCallbacks::onProgress);
    curl_easy_setopt(c, CURLOPT_XFERINFODATA, this);
    curl_easy_setopt(c, CURLOPT_NOPROGRESS, 0L);
    if (!server.userName.isEmpty()) {
        curl_easy_setopt(c, CURLOPT_USERNAME, server.userName.constData());
        curl_easy_setopt(c, CURLOPT_PASSWORD, server.password.constData());
    }
}

void CurlEasy::requireStartTls(const MailServer& server) {
    curl_easy_setopt(m_curl, CURLOPT_USE_SSL,
                     long(server.plaintextAllowed ? CURLUSESSL_TRY : CURLUSESSL_ALL));
}

TransportError CurlEasy::perform() {
    m_replies.clear();
    m_errorBuffer[0] = 0;
    m_lastDone = -1;
    m_peerFingerprint.clear();
    if (m_abort)
        return errorFor(CURLE_ABORTED_BY_CALLBACK);
    CurlEasy* const outer = t_performing;
    t_performing = this;
    const CURLcode code = curl_easy_perform(m_curl);
    t_performing = outer;
    return code == CURLE_OK ? TransportError::ok() : errorFor(code);
}

TransportError CurlEasy::errorFor(int code) const {
    QByteArray text = curl_easy_strerror(CURLcode(code));
    if (m_errorBuffer[0] && text != m_errorBuffer)
        text += QByteArray(": ") + m_errorBuffer;
    // The system's reason ("Connection refused") is what a user can act on.
    long osError = 0;
    if (curl_easy_getinfo(m_curl, CURLINFO_OS_ERRNO, &osError) == CURLE_OK && osError)
        text += QByteArray(" [") + std::strerror(int(osError)) + ']';
    // The server's own words for a refusal say most; the replies after it
    // (QUIT on the way out) say nothing.
    for (qsizetype i = m_replies.size() - 1; i >= 0; --i) {
        if (isRefusal(m_replies[i])) {
            text += QByteArray(" (") + m_replies[i] + ')';
            break;
        }
    }
    return {code, text, m_peerFingerprint};
}

} // namespace mirel
