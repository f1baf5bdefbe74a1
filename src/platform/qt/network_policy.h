#pragma once

class QNetworkAccessManager;
class QNetworkRequest;
class QUrl;

namespace quietlark {

/// Uses the proxy that is set for programs, but never towards this computer.
void useProxies(QNetworkAccessManager& manager);

/// Neither cookies nor credentials, and no other version of HTTP.
void keepToPlainHttp(QNetworkRequest& request);

/// Whether it is an address for HTTP. A network manager would also read files and resources.
[[nodiscard]] bool isHttp(const QUrl& url);

}  // namespace quietlark
