#pragma once

#include <optional>
#include <string>
#include <vector>

#include "server/http_messages.h"

namespace quietlark {

/// Who may use the server.
enum class Audience {
    ThisComputer,
    Network,  ///< every computer that reaches it
};

/// Why a request is turned down for the page it comes from; absent for programs, and for this
/// server's own page. Browsers name that page in Origin and Sec-Fetch-Site. A page whose own name
/// was made to lead here (DNS rebinding) looks like this server's own, and is known by its name in
/// Host: only an address, a name that no site on the internet can have, or one of `ownNames` (in
/// lower case) is taken; names other than localhost only of a server for the network.
[[nodiscard]] std::optional<HttpResponse> foreignPageRefusal(
    const HttpHead& head, Audience audience, const std::vector<std::string>& ownNames = {});

}  // namespace quietlark
