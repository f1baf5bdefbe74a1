#pragma once

#include <optional>
#include <vector>

#include <QString>

#include "config/config.h"
#include "servers/hardware_profile.h"
#include "servers/mdns_browser.h"

namespace quietlark {

/// From this multiple of real time on a server counts as fast enough.
inline constexpr double slowThreshold = 1.5;

/// How to begin a dictation, such as "hold ⌃+⌥+Space".
[[nodiscard]] QString invocationHint(const Config& config);

/// For a user whose local server transcribes so many seconds of sound per second. Absent when it is
/// fast enough, or has not been measured.
[[nodiscard]] std::optional<QString> slowLocalNote(std::optional<double> measuredRTF);

/// For a user of the server named `instance`, where this computer would be noticeably faster.
[[nodiscard]] std::optional<QString> slowRemoteNote(const QString& instance,
                                                    const std::vector<MDNSBrowser::Entry>& remotes,
                                                    const HardwareProfile& hardware);

}  // namespace quietlark
