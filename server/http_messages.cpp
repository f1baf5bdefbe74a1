#include "server/http_messages.h"

#include "server/json_text.h"

namespace quietlark {
namespace {

constexpr int usualRetrySeconds = 5;

std::string stringOrNull(std::string_view text) {
    return text.empty() ? "null" : jsonString(text);
}

}  // namespace

HttpResponse errorResponse(int status, const HttpFault& fault) {
    const std::string_view type = status < 500 ? "invalid_request_error" : "server_error";
    return {.status = status,
            .contentType = "application/json",
            .body = R"({"error":{"message":)" + jsonString(fault.message) + R"(,"type":)" +
                    jsonString(type) + R"(,"param":)" + stringOrNull(fault.parameter) +
                    R"(,"code":)" + stringOrNull(fault.code) + "}}"};
}

HttpResponse badFieldResponse(std::string_view name, std::string_view message) {
    return errorResponse(400, {.message = message, .parameter = name});
}

HttpResponse unavailableResponse(std::string_view message) {
    HttpResponse response = errorResponse(503, {.message = message});
    response.retryAfterSeconds = usualRetrySeconds;
    return response;
}

}  // namespace quietlark
