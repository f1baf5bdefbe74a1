#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quietlark {

/// What is known of a request before its body has been read.
struct HttpHead {
    std::string method;
    std::string path;  ///< without the query
    std::string contentType;
    std::string contentEncoding;
    std::optional<std::uint64_t> contentLength;  ///< bytes; absent when the request does not say
};

/// A request whose body, if it had one, was a form. A view of bytes that are kept elsewhere.
struct HttpRequest {
    std::string_view method;
    std::string_view path;
    std::map<std::string_view, std::string_view> form;  ///< the first field of each name
};

struct HttpResponse {
    int status = 200;
    std::string contentType;
    std::string body;
    std::string allowedMethod = {};  ///< for the Allow header of status 405
    double audioSeconds = 0;         ///< how much sound the request brought, for the log
};

/// An error in the form that OpenAI-compatible clients read. `message` is one sentence.
[[nodiscard]] HttpResponse errorResponse(int status, std::string_view message);

}  // namespace quietlark
