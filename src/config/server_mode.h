#pragma once

#include <cstdint>
#include <optional>
#include <variant>

#include <QJsonObject>
#include <QString>

namespace quietlark {

/// No server chosen yet.
struct Unconfigured {
    bool operator==(const Unconfigured&) const = default;
};

/// The background server on this computer.
struct Local {
    bool operator==(const Local&) const = default;
};

/// A server found on the network.
struct DiscoveredRemote {
    QString instance;  ///< its DNS-SD service instance name
    QString host;
    std::int64_t port = 0;

    bool operator==(const DiscoveredRemote&) const = default;
};

/// A server that the user typed in.
struct ManualRemote {
    QString host;
    std::int64_t port = 0;
    QString scheme;  ///< empty counts as "http"

    bool operator==(const ManualRemote&) const = default;
};

/// Where transcription happens.
using ServerMode = std::variant<Unconfigured, Local, DiscoveredRemote, ManualRemote>;

/// An object of one member: the case's name, and its values in an object.
[[nodiscard]] QJsonObject serverModeToJson(const ServerMode& mode);

/// Reads what serverModeToJson() writes, and the forms of earlier versions. An object that names no
/// known case is Unconfigured; absent when a value is missing or of the wrong type.
[[nodiscard]] std::optional<ServerMode> serverModeFromJson(const QJsonValue& json);

}  // namespace quietlark
