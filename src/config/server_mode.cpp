#include "config/server_mode.h"

#include "config/json_member.h"

namespace quietlark {

namespace {

constexpr QLatin1String unconfiguredKey("unconfigured");
constexpr QLatin1String localKey("local");
constexpr QLatin1String discoveredRemoteKey("discoveredRemote");
constexpr QLatin1String manualRemoteKey("manualRemote");
// Written by earlier versions; read, never written.
constexpr QLatin1String autoDiscoverKey("autoDiscover");
constexpr QLatin1String manualKey("manual");

constexpr QLatin1String instanceKey("instance");
constexpr QLatin1String hostKey("host");
constexpr QLatin1String portKey("port");
constexpr QLatin1String schemeKey("scheme");

struct Encoder {
    QJsonObject operator()(const Unconfigured&) const { return {{unconfiguredKey, QJsonObject()}}; }
    QJsonObject operator()(const Local&) const { return {{localKey, QJsonObject()}}; }
    QJsonObject operator()(const DiscoveredRemote& server) const {
        const QJsonObject values{
            {instanceKey, server.instance}, {hostKey, server.host}, {portKey, qint64{server.port}}};
        return {{discoveredRemoteKey, values}};
    }
    QJsonObject operator()(const ManualRemote& server) const {
        const QJsonObject values{
            {hostKey, server.host}, {portKey, qint64{server.port}}, {schemeKey, server.scheme}};
        return {{manualRemoteKey, values}};
    }
};

std::optional<ServerMode> discoveredRemoteFromJson(const QJsonValue& json) {
    if (!json.isObject()) return std::nullopt;
    const QJsonObject values = json.toObject();
    const auto instance = stringMember(values, instanceKey);
    const auto host = stringMember(values, hostKey);
    const auto port = integerMember(values, portKey);
    if (!instance || !host || !port) return std::nullopt;
    return DiscoveredRemote{*instance, *host, *port};
}

std::optional<ServerMode> manualRemoteFromJson(const QJsonValue& json) {
    if (!json.isObject()) return std::nullopt;
    const QJsonObject values = json.toObject();
    const auto host = stringMember(values, hostKey);
    const auto port = integerMember(values, portKey);
    if (!host || !port) return std::nullopt;
    // Earlier versions knew no scheme.
    const auto scheme = stringMember(values, schemeKey).value_or(QStringLiteral("http"));
    return ManualRemote{*host, *port, scheme};
}

}  // namespace

QJsonObject serverModeToJson(const ServerMode& mode) {
    return std::visit(Encoder{}, mode);
}

std::optional<ServerMode> serverModeFromJson(const QJsonValue& json) {
    if (!json.isObject()) return std::nullopt;
    const QJsonObject cases = json.toObject();
    if (cases.contains(unconfiguredKey)) return Unconfigured{};
    if (cases.contains(localKey)) return Local{};
    if (cases.contains(discoveredRemoteKey)) {
        return discoveredRemoteFromJson(cases.value(discoveredRemoteKey));
    }
    if (cases.contains(manualRemoteKey)) return manualRemoteFromJson(cases.value(manualRemoteKey));
    // Its meaning has changed: let the user choose again.
    if (cases.contains(autoDiscoverKey)) return Unconfigured{};
    if (cases.contains(manualKey)) return manualRemoteFromJson(cases.value(manualKey));
    return Unconfigured{};
}

}  // namespace quietlark
