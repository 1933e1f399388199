#include "linux/http/CurlErrors.h"

#include <cerrno>
#include <system_error>

namespace halvane::linux_http {

namespace {

using util::UrlError;
using util::urlError;

util::Error connectError(const FailureContext& context) {
    switch (context.osErrno) {
        case ENETUNREACH:
        case ENETDOWN:
            return urlError(UrlError::NotConnected, "This computer has no network that leads to " + context.server + ".");
        case ETIMEDOUT:
            return timedOutError(context.server);
        case ECONNRESET:
            return connectionLostError(context.server);
        default:
            break;
    }
    const std::string reason = context.osErrno == 0 ? "" : ": " + std::generic_category().message(context.osErrno);
    return urlError(UrlError::CannotConnect, "Could not connect to " + context.server + reason + ".");
}

util::Error tlsError(const FailureContext& context) {
    return urlError(UrlError::SecureConnection, "A secure connection to " + context.server + " could not be made.");
}

util::Error badReply(const FailureContext& context) {
    return urlError(UrlError::BadServerResponse, "The reply of " + context.server + " is not HTTP.");
}

}  // namespace

util::Error cancelledError() { return urlError(UrlError::Cancelled, "The transfer was cancelled."); }

util::Error timedOutError(const std::string& server) {
    return urlError(UrlError::TimedOut, "Nothing came from " + server + " for too long.");
}

util::Error connectionLostError(const std::string& server) {
    return urlError(UrlError::ConnectionLost, "The connection to " + server + " was lost before the reply was whole.");
}

util::Error errorOf(CURLcode code, const FailureContext& context) {
    if (!context.certificateRefusal.empty()) {
        return urlError(UrlError::UntrustedCertificate,
                        "The certificate of " + context.server + " is not trusted: " + context.certificateRefusal + ".");
    }
    switch (code) {
        case CURLE_URL_MALFORMAT:
            return urlError(UrlError::BadUrl, "The address is not valid.");
        case CURLE_COULDNT_RESOLVE_HOST:
            return urlError(UrlError::CannotFindHost, "The host " + context.server + " was not found.");
        case CURLE_COULDNT_RESOLVE_PROXY:
            return urlError(UrlError::CannotFindHost, "The proxy for " + context.server + " was not found.");
        case CURLE_COULDNT_CONNECT:
        case CURLE_PROXY:
            return connectError(context);
        case CURLE_OPERATION_TIMEDOUT:
            return timedOutError(context.server);
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_SHUTDOWN_FAILED:
        case CURLE_USE_SSL_FAILED:
            return tlsError(context);
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_ISSUER_ERROR:
            // An alert speaks of our certificate: of theirs we would have told ourselves.
            if (context.tlsAlertReceived) return tlsError(context);
            return urlError(UrlError::UntrustedCertificate, "The certificate of " + context.server + " is not trusted.");
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
        case CURLE_SEND_FAIL_REWIND:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
            // A server of TLS 1.3 refuses a client's certificate after the handshake, by an alert.
            return context.tlsAlertReceived ? tlsError(context) : connectionLostError(context.server);
        case CURLE_UNSUPPORTED_PROTOCOL:  // our schemes are checked before: this is a reply without a status line
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_WRITE_ERROR:
        case CURLE_OUT_OF_MEMORY:  // a header line longer than libcurl's buffer for it
            return badReply(context);
        case CURLE_BAD_CONTENT_ENCODING:
            return urlError(UrlError::CannotDecode, "The compressed reply of " + context.server + " could not be decoded.");
        default:
            return urlError(UrlError::Unknown, "The transfer with " + context.server + " failed: " + curl_easy_strerror(code) + ".");
    }
}

}  // namespace halvane::linux_http
