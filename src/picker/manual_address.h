#pragma once

#include <cstdint>
#include <optional>

#include <QString>

#include "config/server_mode.h"

namespace quietlark {

/// The address of a server as a user types it. Any thread.
struct ManualAddress {
    QString scheme;         ///< in lower case, never empty
    QString host;           ///< as typed; an IPv6 address in its brackets
    std::int64_t port = 1;  ///< 1 to 65535

    /// Understands HOST:PORT, with or without SCHEME:// before it and a path after it, which is
    /// dropped. The port is always needed. Absent for any other text.
    [[nodiscard]] static std::optional<ManualAddress> parse(const QString& text);

    /// SCHEME://HOST:PORT.
    [[nodiscard]] QString baseAddress() const;

    bool operator==(const ManualAddress&) const = default;
};

/// What a user would type for that server; without the scheme where that is "http".
[[nodiscard]] QString typedForm(const ManualRemote& remote);

}  // namespace quietlark
