#include "platform/TransportError.h"

#include <curl/curl.h>

namespace mirel {

bool TransportError::noTls() const {
    return number == CURLE_USE_SSL_FAILED;
}

bool TransportError::untrustedCertificate() const {
    return number == CURLE_PEER_FAILED_VERIFICATION && !peerFingerprint.isEmpty();
}

QByteArray TransportError::inWords(QByteArrayView host, int port) const {
    // Our own descriptions are words already; only curl's are replaced.
    if (number <= 0 || !description.startsWith(curl_easy_strerror(CURLcode(number))))
        return description;
    // The server's own refusal, which errorFor put last in brackets, says
    // more than any word of ours.
    const qsizetype open = description.lastIndexOf(" (");
    if (open > 0 && description.endsWith(')')) {
        const QByteArray reply = description.mid(open + 2).chopped(1);
        if (reply.startsWith("-ERR") || (!reply.isEmpty() && (reply[0] == '4' || reply[0] == '5')))
            return host.toByteArray() + " refused: " + reply;
    }
    const QByteArray where = host.toByteArray() + " port " + QByteArray::number(port);
    const QByteArray lower = description.toLower();
    switch (number) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return "Could not find the server " + host.toByteArray() + ": check its name";
    case CURLE_COULDNT_CONNECT:
        if (lower.contains("refused"))
            return "Could not connect to " + where + ": connection refused";
        if (lower.contains("unreachable"))
            return "Could not connect to " + where + ": the network cannot reach it";
        return "Could not connect to " + where;
    case CURLE_OPERATION_TIMEDOUT:
        return "No answer from " + where + " in time";
    case CURLE_LOGIN_DENIED:
        return host.toByteArray() + " refused the user name or password";
    case CURLE_USE_SSL_FAILED:
        return where + " offers no encryption; the password was not sent";
    case CURLE_PEER_FAILED_VERIFICATION:
        return "The certificate of " + where +
               " is not trusted (or not the one you accepted); nothing was sent";
    case CURLE_SSL_CONNECT_ERROR:
        return "Could not set up encryption with " + where;
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        return "The connection to " + where + " broke off";
    case CURLE_WEIRD_SERVER_REPLY:
        return where + " gave an answer Mirel does not understand";
    case CURLE_ABORTED_BY_CALLBACK:
        return "Stopped";
    default:
        break;
    }
    return description;
}

} // namespace mirel
