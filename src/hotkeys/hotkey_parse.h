#pragma once

#include <optional>

#include <QHash>
#include <QSet>
#include <QString>
#include <tl/expected.hpp>

#include "platform/keys.h"

namespace quietlark {

/// What a hotkey asks for. Either part may be missing, but not both.
struct Hotkey {
    ModifierFlags modifiers = 0;     ///< all of these must be held; others may be
    std::optional<KeyCode> keyCode;  ///< absent for a hotkey of modifiers only

    bool operator==(const Hotkey&) const = default;
};

/// The grammar of hotkey specs: "+"-joined tokens, in any order and case, naming modifiers and at
/// most one key, such as "ctrl+alt+space" or "fn".
namespace HotkeyParse {

struct ParseError {
    enum class Kind { multipleNonModifierKeys, unknownToken, empty };

    Kind kind = Kind::empty;
    QString text;  ///< the spec as given; for unknownToken the token, trimmed and lower-cased

    /// One sentence for the user.
    [[nodiscard]] QString localizedDescription() const;
    bool operator==(const ParseError&) const = default;
};

/// Reads a spec. The first unknown token ends the reading.
[[nodiscard]] tl::expected<Hotkey, ParseError> parse(const QString& spec);

/// Lower-case token to modifier flag.
[[nodiscard]] const QHash<QString, ModifierFlags>& modifierFlags();

/// Lower-case token to virtual key code.
[[nodiscard]] const QHash<QString, KeyCode>& keyCodes();

/// The token that a spec is written with for this key; absent for keys that cannot be named.
[[nodiscard]] std::optional<QString> keyToken(KeyCode code);

/// The keys whose events always carry the function flag, whether or not Fn is held.
[[nodiscard]] const QSet<KeyCode>& fnIntrinsicCodes();

}  // namespace HotkeyParse
}  // namespace quietlark
