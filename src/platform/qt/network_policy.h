#pragma once

class QNetworkAccessManager;
class QNetworkRequest;

namespace quietlark {

/// Uses the proxy that is set for programs, but never towards this computer.
void useProxies(QNetworkAccessManager& manager);

/// Neither cookies nor credentials, and no other version of HTTP.
void keepToPlainHttp(QNetworkRequest& request);

}  // namespace quietlark
