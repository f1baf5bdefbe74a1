#pragma once

#include <optional>

#include "platform/http_stream.h"

namespace quietlark {

/// What to ask next when an answer is a redirect: its Location exactly as given, with the headers
/// of the first request; or what the system proposes where there is no usable Location. Absent when
/// `head` is an answer to be taken as it is.
[[nodiscard]] std::optional<HttpStreamRequest> redirected(const HttpHead& head,
                                                          const HttpStreamRequest& first);

}  // namespace quietlark
