#include "local_server/redirect_policy.h"

namespace quietlark {

namespace {

bool isRedirect(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}  // namespace

std::optional<HttpStreamRequest> redirected(const HttpHead& head, const HttpStreamRequest& first) {
    if (!isRedirect(head.status)) return std::nullopt;
    const auto location = head.header("Location");
    if (!location) return head.proposal;
    const QUrl url(QString::fromUtf8(*location), QUrl::StrictMode);
    if (url.isEmpty() || !url.isValid()) return head.proposal;
    return HttpStreamRequest{url, first.headers};
}

}  // namespace quietlark
