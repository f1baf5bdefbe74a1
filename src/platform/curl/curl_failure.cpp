#include "platform/curl/curl_failure.h"

#include <cerrno>

namespace quietlark {

HttpFailure meaningOf(CURLcode code, long systemError) {
    switch (code) {
        case CURLE_COULDNT_RESOLVE_HOST:
            return HttpFailure::NotFound;
        case CURLE_COULDNT_CONNECT:
            if (systemError == ECONNREFUSED) return HttpFailure::Refused;
            return systemError == ETIMEDOUT ? HttpFailure::TimedOut : HttpFailure::Failed;
        case CURLE_OPERATION_TIMEDOUT:
            return HttpFailure::TimedOut;
        case CURLE_PARTIAL_FILE:
        case CURLE_GOT_NOTHING:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
            return HttpFailure::ClosedEarly;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_PEER_FAILED_VERIFICATION:
            return HttpFailure::Insecure;
        default:
            return HttpFailure::Failed;
    }
}

TransportError curlError(const QUrl& url, HttpFailure failure, CURLcode code, const char* detail) {
    return transportError(failure, url, QStringLiteral("libcurl"), code, QString::fromUtf8(detail));
}

}  // namespace quietlark
