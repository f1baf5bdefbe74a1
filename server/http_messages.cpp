#include "server/http_messages.h"

#include "server/json_text.h"

namespace quietlark {

HttpResponse errorResponse(int status, std::string_view message) {
    const std::string_view type = status < 500 ? "invalid_request_error" : "server_error";
    return {.status = status,
            .contentType = "application/json",
            .body = R"({"error":{"message":)" + jsonString(message) + R"(,"type":)" +
                    jsonString(type) + "}}"};
}

}  // namespace quietlark
