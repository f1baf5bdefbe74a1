#pragma once

#include <QString>

namespace quietlark {

/// Where the user's programs keep their settings, `$XDG_CONFIG_HOME` or `~/.config`. A relative or
/// empty variable is ignored. Absolute, without a final slash; any thread.
[[nodiscard]] QString configHome();

/// The same for what they keep beside settings: `$XDG_DATA_HOME` or `~/.local/share`.
[[nodiscard]] QString dataHome();

/// The two as they are where the environment names no others.
[[nodiscard]] QString usualConfigHome();
[[nodiscard]] QString usualDataHome();

}  // namespace quietlark
