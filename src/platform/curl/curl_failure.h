#pragma once

#include <curl/curl.h>

#include "platform/http_failure.h"

namespace quietlark {

/// What libcurl's `code` means; `systemError` is the errno of the connection, if there was one.
[[nodiscard]] HttpFailure meaningOf(CURLcode code, long systemError);

/// The error that is told; `detail` is libcurl's own text.
[[nodiscard]] TransportError curlError(const QUrl& url, HttpFailure failure, CURLcode code,
                                       const char* detail);

}  // namespace quietlark
