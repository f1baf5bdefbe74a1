#pragma once

#include <optional>
#include <string_view>

#include <tl/expected.hpp>

#include "server/http_messages.h"
#include "server/transcript_format.h"

namespace quietlark {

/// What an uploaded form asks for. A view of the request.
struct TranscriptionForm {
    std::string_view file;
    TranscriptFormat format = TranscriptFormat::Json;
    std::string_view language = {};  ///< empty when it does not say
    std::string_view prompt = {};
    std::optional<double> temperature = {};  ///< 0 to 1
    bool translates = false;                 ///< into English
    bool wantsWords = false;                 ///< the time of each word

    /// The error is the answer to a form that makes no sense.
    [[nodiscard]] static tl::expected<TranscriptionForm, HttpResponse> parse(
        const HttpRequest& request);
};

}  // namespace quietlark
