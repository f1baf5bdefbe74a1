#pragma once

#include <string_view>

#include <httplib.h>

#include "server/http_messages.h"

namespace quietlark {

/// Our requests and answers in the terms of cpp-httplib.

[[nodiscard]] HttpHead headOf(const httplib::Request& request);

void fill(httplib::Response& out, const HttpResponse& response);

/// What is said of requests that the library itself turns down, by the status that it gives them.
[[nodiscard]] std::string_view messageFor(int status);

}  // namespace quietlark
