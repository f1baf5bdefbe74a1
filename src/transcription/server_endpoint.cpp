#include "transcription/server_endpoint.h"

#include "transcription/endpoint_file.h"

namespace quietlark {

namespace {

constexpr QLatin1String defaultScheme("http");

std::optional<QString> address(const QString& scheme, const QString& host, std::int64_t port) {
    const QString trimmedHost = host.trimmed();
    if (trimmedHost.isEmpty() || port < 1) return std::nullopt;
    return scheme + QStringLiteral("://") + trimmedHost + u':' + QString::number(port);
}

struct BaseURL {
    const EndpointFile& endpointFile;

    std::optional<QString> operator()(const Unconfigured&) const { return std::nullopt; }
    std::optional<QString> operator()(const Local&) const {
        const auto local = endpointFile.read();
        if (!local) return std::nullopt;
        return defaultScheme + QStringLiteral("://") + *local;
    }
    std::optional<QString> operator()(const DiscoveredRemote& server) const {
        return address(defaultScheme, server.host, server.port);
    }
    std::optional<QString> operator()(const ManualRemote& server) const {
        return address(server.scheme.isEmpty() ? QString(defaultScheme) : server.scheme,
                       server.host, server.port);
    }
};

}  // namespace

ServerEndpoint::ServerEndpoint(const EndpointFile& endpointFile) : m_endpointFile(endpointFile) {}

std::optional<QString> ServerEndpoint::baseURL(const ServerMode& mode) const {
    return std::visit(BaseURL{m_endpointFile}, mode);
}

}  // namespace quietlark
