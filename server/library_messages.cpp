#include "server/library_messages.h"

namespace quietlark {

HttpHead headOf(const httplib::Request& request) {
    HttpHead head{.method = request.method,
                  .path = request.path,
                  .contentType = request.get_header_value("Content-Type"),
                  .contentEncoding = request.get_header_value("Content-Encoding"),
                  .transferEncoding = request.get_header_value("Transfer-Encoding"),
                  .contentLength = std::nullopt,
                  .host = request.get_header_value("Host"),
                  .origin = request.get_header_value("Origin"),
                  .fetchSite = request.get_header_value("Sec-Fetch-Site"),
                  .fetchMode = request.get_header_value("Sec-Fetch-Mode")};
    if (request.has_header("Content-Length"))
        head.contentLength = request.get_header_value<std::uint64_t>("Content-Length");
    return head;
}

void fill(httplib::Response& out, const HttpResponse& response) {
    out.status = response.status;
    out.set_content(response.body, response.contentType);
    if (!response.allowedMethod.empty()) out.set_header("Allow", response.allowedMethod);
    if (response.retryAfterSeconds > 0)
        out.set_header("Retry-After", std::to_string(response.retryAfterSeconds));
    // OpenAI's clients would try again whatever the reason.
    if (!response.isWorthRetrying) out.set_header("x-should-retry", "false");
    out.set_header("X-Content-Type-Options", "nosniff");
    out.set_header("Cross-Origin-Resource-Policy", "same-origin");
}

std::string_view messageFor(int status) {
    switch (status) {
        case 413:
            return "The upload is too large.";
        case 414:
            return "The address is too long.";
        case 416:
            return "The requested range makes no sense.";
        case 500:
            return "The server has a fault.";
        default:
            return "The request cannot be understood.";
    }
}

}  // namespace quietlark
