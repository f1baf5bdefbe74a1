#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "server/multipart_form.h"

namespace quietlark {

/// What is known of a request before its body has been read.
struct HttpHead {
    std::string method;
    std::string path;  ///< without the query
    std::string contentType = {};
    std::string contentEncoding = {};
    std::string transferEncoding = {};
    std::optional<std::uint64_t> contentLength = {};  ///< bytes; absent when it does not say
    std::string host = {};                            ///< the Host field
    std::string origin = {};     ///< the Origin field: the page that a browser asks for
    std::string fetchSite = {};  ///< Sec-Fetch-Site: how that page is related to this server
    std::string fetchMode = {};  ///< Sec-Fetch-Mode: what for
};

/// A request whose body, if it had one, was a form. A view of bytes that are kept elsewhere.
struct HttpRequest {
    std::string_view method;
    std::string_view path;
    FormFields form = {};
    /// Whether the client no longer waits for the answer. Any thread.
    std::function<bool()> isAbandoned = [] { return false; };
};

struct HttpResponse {
    int status = 200;
    std::string contentType;
    std::string body;
    std::string allowedMethod = {};  ///< for the Allow header of status 405
    int retryAfterSeconds = 0;       ///< for the Retry-After header; none for 0
    bool isWorthRetrying = true;     ///< false for errors that would come again
    double audioSeconds = 0;         ///< how much sound the request brought, for the log
};

/// What is wrong with a request, as OpenAI-compatible clients read it.
struct HttpFault {
    std::string_view message;         ///< one sentence
    std::string_view parameter = {};  ///< the field of the form that is to blame; none if empty
    std::string_view code = {};       ///< a word for programs; none if empty
};

/// An error in the form of OpenAI's interface: an object with message, type, param and code.
[[nodiscard]] HttpResponse errorResponse(int status, const HttpFault& fault);

/// Status 400, for a field of a form.
[[nodiscard]] HttpResponse badFieldResponse(std::string_view name, std::string_view message);

/// Status 503, with the advice to come back in a few seconds.
[[nodiscard]] HttpResponse unavailableResponse(std::string_view message);

}  // namespace quietlark
