#pragma once

#include <optional>
#include <vector>

#include <QString>
#include <QUuid>
#include <tl/expected.hpp>

#include "platform/key_event_source.h"

namespace quietlark {

/// Hotkeys as the user presses and reads them, and as the settings keep them. Any thread.
namespace HotkeyDisplay {

/// One key of a hotkey, to be shown by itself.
struct Chip {
    QUuid id = QUuid::createUuid();
    std::optional<QString> symbol;  ///< of modifiers
    QString label;                  ///< empty where the symbol says it all

    bool operator==(const Chip&) const = default;
};

struct CaptureError {
    enum class Kind { empty, unknownKeyCode };

    Kind kind = Kind::empty;
    KeyCode keyCode = 0;  ///< of unknownKeyCode

    bool operator==(const CaptureError&) const = default;
};

/// The spec of the combination that a key-down event completes.
[[nodiscard]] tl::expected<QString, CaptureError> spec(const KeyEvent& event);

/// Compact, such as "⌥Space". A spec that does not parse is shown as it stands, an empty one as
/// "(none)".
[[nodiscard]] QString display(const QString& spec);

/// As display(), with "+" between the keys.
[[nodiscard]] QString displayJoined(const QString& spec);

/// Modifiers first; none for a spec that does not parse.
[[nodiscard]] std::vector<Chip> chips(const QString& spec);

/// The name of one key; "key " and its number where it has none.
[[nodiscard]] QString renderKeyLabel(KeyCode code);

}  // namespace HotkeyDisplay
}  // namespace quietlark
