#include "commands/configured_server.h"

#include <QCoreApplication>

#include "transcription/server_endpoint.h"

namespace quietlark {

namespace {

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(ConfiguredServer)

public:
    static QString unreadable(const QString& path) {
        return tr("The settings in %1 cannot be understood, so no transcription server is chosen.")
            .arg(path);
    }
    static QString none() {
        return tr("No transcription server is configured; name one with --server.");
    }
    static QString notTrusted(const QString& path) {
        return tr("The file %1 belongs to another user, so the server it names is not used.")
            .arg(path);
    }
    static QString notRunning() {
        return tr(
            "The transcription server on this computer does not run; start it with: "
            "quietlark-server");
    }
    static QString noAddress() {
        return tr("The configured transcription server has no valid address.");
    }
};

}  // namespace

ConfiguredServer configuredServer(const QString& configPath, const Config& config,
                                  const EndpointFile& endpointFile) {
    if (const auto address = ServerEndpoint(endpointFile).baseURL(config.serverMode))
        return *address;
    if (Config::isDamaged(configPath)) return tl::unexpected(Sentences::unreadable(configPath));
    if (std::holds_alternative<Unconfigured>(config.serverMode))
        return tl::unexpected(Sentences::none());
    if (!std::holds_alternative<Local>(config.serverMode))
        return tl::unexpected(Sentences::noAddress());
    if (endpointFile.isDistrusted())
        return tl::unexpected(Sentences::notTrusted(endpointFile.path()));
    return tl::unexpected(Sentences::notRunning());
}

}  // namespace quietlark
