#include "server/browser_guard.h"

#include <algorithm>
#include <array>
#include <cctype>

#include <arpa/inet.h>

#include "server/text_forms.h"

namespace quietlark {
namespace {

/// Names under these are given out within a home or an office only (RFC 6761, 6762, 8375; ICANN
/// has set "internal" aside; "lan" has never been a top-level domain, and many routers use it).
constexpr std::array<std::string_view, 5> privateDomains = {".local", ".localhost", ".home.arpa",
                                                            ".internal", ".lan"};

/// The host of "host:port".
std::string nameIn(std::string_view authority) {
    const auto port = authority.rfind(':');
    const bool isBare = authority.ends_with(']') || port == std::string_view::npos;
    return hostNameForm(isBare ? authority : authority.substr(0, port));
}

bool isAddress(const std::string& name) {
    in6_addr address{};
    if (inet_pton(AF_INET, name.c_str(), &address) == 1) return true;
    return name.starts_with('[') && name.ends_with(']') &&
           inet_pton(AF_INET6, name.substr(1, name.size() - 2).c_str(), &address) == 1;
}

bool isOwnName(const std::string& name, Audience audience,
               const std::vector<std::string>& ownNames) {
    if (isAddress(name) || name == "localhost") return true;
    if (audience == Audience::ThisComputer) return false;
    if (std::ranges::find(ownNames, name) != ownNames.end()) return true;
    const bool isSingleWord =
        !name.empty() && std::ranges::all_of(name, [](unsigned char character) {
            return std::isalnum(character) != 0 || character == '-' || character == '_';
        });
    return isSingleWord || std::ranges::any_of(privateDomains, [&](std::string_view domain) {
               return name.ends_with(domain);
           });
}

}  // namespace

std::optional<HttpResponse> foreignPageRefusal(const HttpHead& head, Audience audience,
                                               const std::vector<std::string>& ownNames) {
    // No browser leaves Host out; some scripts do.
    if (!head.host.empty() && !isOwnName(nameIn(head.host), audience, ownNames))
        return errorResponse(
            403,
            {.message = "This server is not known by that name; its option --known-as adds one.",
             .code = "unknown_host"});
    const bool isForeign =
        !head.origin.empty() && lowerCase(head.origin) != "http://" + lowerCase(head.host);
    const bool isLink = head.fetchMode == "navigate" && head.method == "GET";
    const bool isFetchedElsewhere =
        !isLink && (head.fetchSite == "cross-site" || head.fetchSite == "same-site");
    if (isForeign || isFetchedElsewhere)
        return errorResponse(403, {.message = "Pages of other sites may not use this server.",
                                   .code = "foreign_origin"});
    return std::nullopt;
}

}  // namespace quietlark
