#pragma once

#include <array>

#include <QString>

namespace quietlark {

/// The panes of Preferences.
enum class PrefsTab { general, hotkey, server };

/// From left to right.
inline constexpr std::array allPrefsTabs{PrefsTab::general, PrefsTab::hotkey, PrefsTab::server};

/// "general", "hotkey" or "server".
[[nodiscard]] QString rawValue(PrefsTab tab);

/// What its tab says.
[[nodiscard]] QString label(PrefsTab tab);

/// The name of its symbol.
[[nodiscard]] QString symbol(PrefsTab tab);

}  // namespace quietlark
