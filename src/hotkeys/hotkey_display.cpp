#include "hotkeys/hotkey_display.h"

#include <array>

#include <QCoreApplication>
#include <QStringList>

#include "hotkeys/hotkey_parse.h"

namespace quietlark::HotkeyDisplay {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(HotkeyDisplay)
};

/// A text, and which of several uses of that text is meant.
struct Wording {
    const char* text;
    const char* use;
};

/// A modifier in all its forms. The compact and the joined form are apart because a desktop that
/// writes words instead of signs needs something between them.
struct Modifier {
    ModifierFlags flag;
    const char* token;
    Wording compact;
    Wording joined;
    Wording chipSymbol;
    const char* chipLabel;
};

/// In the order in which they are written and shown.
constexpr std::array modifiers{
    Modifier{modifier::control, "ctrl", QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌃", "compact"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌃", "joined"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌃", "chip"),
             QT_TRANSLATE_NOOP("HotkeyDisplay", "Ctrl")},
    Modifier{modifier::option, "alt", QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌥", "compact"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌥", "joined"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌥", "chip"),
             QT_TRANSLATE_NOOP("HotkeyDisplay", "Opt")},
    Modifier{modifier::shift, "shift", QT_TRANSLATE_NOOP3("HotkeyDisplay", "⇧", "compact"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "⇧", "joined"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "⇧", "chip"),
             QT_TRANSLATE_NOOP("HotkeyDisplay", "Shift")},
    Modifier{modifier::command, "cmd", QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌘", "compact"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌘", "joined"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "⌘", "chip"),
             QT_TRANSLATE_NOOP("HotkeyDisplay", "Cmd")},
    Modifier{modifier::function, "fn", QT_TRANSLATE_NOOP3("HotkeyDisplay", "fn ", "compact"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "fn", "joined"),
             QT_TRANSLATE_NOOP3("HotkeyDisplay", "fn", "chip"), nullptr},
};

const QHash<KeyCode, const char*>& keyLabels() {
    // clang-format off
    static const QHash<KeyCode, const char*> labels{
        {49, QT_TRANSLATE_NOOP("HotkeyDisplay", "Space")},
        {36, QT_TRANSLATE_NOOP("HotkeyDisplay", "⏎")},
        {48, QT_TRANSLATE_NOOP("HotkeyDisplay", "⇥")},
        {53, QT_TRANSLATE_NOOP("HotkeyDisplay", "⎋")},
        {51, QT_TRANSLATE_NOOP("HotkeyDisplay", "⌫")},
        {123, "←"}, {124, "→"}, {125, "↓"}, {126, "↑"},
        {115, QT_TRANSLATE_NOOP("HotkeyDisplay", "Home")},
        {116, QT_TRANSLATE_NOOP("HotkeyDisplay", "Pg Up")},
        {119, QT_TRANSLATE_NOOP("HotkeyDisplay", "End")},
        {121, QT_TRANSLATE_NOOP("HotkeyDisplay", "Pg Dn")},
        {122, "F1"}, {120, "F2"}, {99, "F3"}, {118, "F4"}, {96, "F5"}, {97, "F6"}, {98, "F7"},
        {100, "F8"}, {101, "F9"}, {109, "F10"}, {103, "F11"}, {111, "F12"}, {105, "F13"},
        {107, "F14"}, {113, "F15"}, {106, "F16"}, {64, "F17"}, {79, "F18"}, {80, "F19"},
        {90, "F20"},
    };
    // clang-format on
    return labels;
}

QString shown(const char* text) {
    return Texts::tr(text);
}

QString shown(const Wording& wording) {
    return Texts::tr(wording.text, wording.use);
}

/// What there is to show instead of the keys, if there is anything.
std::optional<QString> insteadOfKeys(const QString& spec,
                                     const tl::expected<Hotkey, HotkeyParse::ParseError>& hotkey) {
    if (hotkey) return std::nullopt;
    return spec.isEmpty() ? Texts::tr("(none)") : spec;
}

}  // namespace

tl::expected<QString, CaptureError> spec(const KeyEvent& event) {
    const bool isFnIntrinsic = HotkeyParse::fnIntrinsicCodes().contains(event.keyCode);
    QStringList tokens;
    for (const Modifier& each : modifiers) {
        if (each.flag == modifier::function && isFnIntrinsic) continue;
        if (event.modifierFlags & each.flag) tokens << QString::fromLatin1(each.token);
    }
    const auto token = HotkeyParse::keyToken(event.keyCode);
    if (!token)
        return tl::unexpected(CaptureError{CaptureError::Kind::unknownKeyCode, event.keyCode});
    tokens << *token;
    return tokens.join(u'+');
}

QString display(const QString& spec) {
    const auto hotkey = HotkeyParse::parse(spec);
    if (const auto instead = insteadOfKeys(spec, hotkey)) return *instead;
    QString result;
    for (const Modifier& each : modifiers) {
        if (hotkey->modifiers & each.flag) result += shown(each.compact);
    }
    if (hotkey->keyCode)
        result += renderKeyLabel(*hotkey->keyCode);
    else if (result.endsWith(u'+'))  // words in the place of signs, joined to what follows
        result.chop(1);
    return result;
}

QString displayJoined(const QString& spec) {
    const auto hotkey = HotkeyParse::parse(spec);
    if (const auto instead = insteadOfKeys(spec, hotkey)) return *instead;
    QStringList pieces;
    for (const Modifier& each : modifiers) {
        if (hotkey->modifiers & each.flag) pieces << shown(each.joined);
    }
    if (hotkey->keyCode) pieces << renderKeyLabel(*hotkey->keyCode);
    return pieces.join(u'+');
}

std::vector<Chip> chips(const QString& spec) {
    const auto hotkey = HotkeyParse::parse(spec);
    if (!hotkey) return {};
    std::vector<Chip> result;
    for (const Modifier& each : modifiers) {
        if (!(hotkey->modifiers & each.flag)) continue;
        Chip chip;
        chip.symbol = shown(each.chipSymbol);
        if (each.chipLabel) chip.label = shown(each.chipLabel);
        result.push_back(chip);
    }
    if (hotkey->keyCode) {
        Chip chip;
        chip.label = renderKeyLabel(*hotkey->keyCode);
        result.push_back(chip);
    }
    return result;
}

QString renderKeyLabel(KeyCode code) {
    if (const auto label = keyLabels().constFind(code); label != keyLabels().cend())
        return shown(*label);
    const auto token = HotkeyParse::keyToken(code);
    if (!token) return Texts::tr("key %1").arg(code);
    return token->left(1).toUpper() + token->mid(1);
}

}  // namespace quietlark::HotkeyDisplay
