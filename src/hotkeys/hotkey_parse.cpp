#include "hotkeys/hotkey_parse.h"

#include <QCoreApplication>
#include <QStringList>

namespace quietlark::HotkeyParse {

namespace {

/// Blanks and angle brackets go from both ends, so that "<space>" reads as "space".
QString trimmedToken(const QString& piece) {
    const auto isPadding = [](QChar c) { return c == u' ' || c == u'<' || c == u'>'; };
    qsizetype begin = 0;
    qsizetype end = piece.size();
    while (begin < end && isPadding(piece[begin]))
        ++begin;
    while (end > begin && isPadding(piece[end - 1]))
        --end;
    return piece.mid(begin, end - begin).toLower();
}

template <typename Code>
using Tokens = std::initializer_list<std::pair<const char*, Code>>;

template <typename Code>
QHash<QString, Code> table(Tokens<Code> tokens) {
    QHash<QString, Code> result;
    result.reserve(static_cast<qsizetype>(tokens.size()));
    for (const auto& [token, code] : tokens)
        result.insert(QString::fromLatin1(token), code);
    return result;
}

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(HotkeyParse)
};

}  // namespace

QString ParseError::localizedDescription() const {
    switch (kind) {
        case Kind::multipleNonModifierKeys:
            return Sentences::tr("multiple non-modifier keys in hotkey: ") + text;
        case Kind::unknownToken:
            return Sentences::tr("unknown key in hotkey: ") + text;
        case Kind::empty:
            break;
    }
    return Sentences::tr("empty hotkey: ") + text;
}

tl::expected<Hotkey, ParseError> parse(const QString& spec) {
    using Kind = ParseError::Kind;
    Hotkey hotkey;
    for (const QString& piece : spec.split(u'+', Qt::SkipEmptyParts)) {
        const QString token = trimmedToken(piece);
        if (token.isEmpty()) continue;
        if (const auto flag = modifierFlags().constFind(token); flag != modifierFlags().cend()) {
            hotkey.modifiers |= *flag;
            continue;
        }
        const auto code = keyCodes().constFind(token);
        if (code == keyCodes().cend()) return tl::unexpected(ParseError{Kind::unknownToken, token});
        if (hotkey.keyCode) return tl::unexpected(ParseError{Kind::multipleNonModifierKeys, spec});
        hotkey.keyCode = *code;
    }
    if (hotkey == Hotkey{}) return tl::unexpected(ParseError{Kind::empty, spec});
    return hotkey;
}

const QHash<QString, ModifierFlags>& modifierFlags() {
    static const auto flags = table<ModifierFlags>({
        {"cmd", modifier::command},
        {"command", modifier::command},
        {"meta", modifier::command},
        {"win", modifier::command},
        {"alt", modifier::option},
        {"option", modifier::option},
        {"opt", modifier::option},
        {"ctrl", modifier::control},
        {"control", modifier::control},
        {"shift", modifier::shift},
        {"fn", modifier::function},
        {"function", modifier::function},
    });
    return flags;
}

const QHash<QString, KeyCode>& keyCodes() {
    // clang-format off
    static const auto codes = table<KeyCode>({
        // Letters and digits, by their place on an ANSI keyboard.
        {"a", 0}, {"s", 1}, {"d", 2}, {"f", 3}, {"h", 4}, {"g", 5}, {"z", 6}, {"x", 7}, {"c", 8},
        {"v", 9}, {"b", 11}, {"q", 12}, {"w", 13}, {"e", 14}, {"r", 15}, {"y", 16}, {"t", 17},
        {"1", 18}, {"2", 19}, {"3", 20}, {"4", 21}, {"6", 22}, {"5", 23}, {"9", 25}, {"7", 26},
        {"8", 28}, {"0", 29}, {"o", 31}, {"u", 32}, {"i", 34}, {"p", 35}, {"l", 37}, {"j", 38},
        {"k", 40}, {"n", 45}, {"m", 46},
        {"=", 24}, {"-", 27}, {"]", 30}, {"[", 33}, {"'", 39}, {";", 41}, {"\\", 42}, {",", 43},
        {"/", 44}, {".", 47}, {"`", 50},
        // "enter" is the main Return key; "delete" deletes backwards.
        {"return", 36}, {"enter", 36}, {"tab", 48}, {"space", 49}, {"delete", 51},
        {"backspace", 51}, {"escape", 53}, {"esc", 53},
        {"f1", 122}, {"f2", 120}, {"f3", 99}, {"f4", 118}, {"f5", 96}, {"f6", 97}, {"f7", 98},
        {"f8", 100}, {"f9", 101}, {"f10", 109}, {"f11", 103}, {"f12", 111}, {"f13", 105},
        {"f14", 107}, {"f15", 113}, {"f16", 106}, {"f17", 64}, {"f18", 79}, {"f19", 80},
        {"f20", 90},
        {"home", 115}, {"pageup", 116}, {"end", 119}, {"pagedown", 121}, {"left", 123},
        {"right", 124}, {"down", 125}, {"up", 126},
    });
    // clang-format on
    return codes;
}

std::optional<QString> keyToken(KeyCode code) {
    static const auto tokens = [] {
        QHash<KeyCode, QString> result;
        for (const auto& [token, keyCode] : keyCodes().asKeyValueRange())
            result.insert(keyCode, token);
        // Keys of two names are written by the one on the keyboard.
        result.insert(36, QStringLiteral("return"));
        result.insert(51, QStringLiteral("delete"));
        result.insert(53, QStringLiteral("escape"));
        return result;
    }();
    const auto found = tokens.constFind(code);
    if (found == tokens.cend()) return std::nullopt;
    return *found;
}

const QSet<KeyCode>& fnIntrinsicCodes() {
    // The arrows, the block above them with help and forward delete, and F1 to F20.
    static const QSet<KeyCode> codes{123, 124, 125, 126, 114, 115, 116, 117, 119, 121,
                                     122, 120, 99,  118, 96,  97,  98,  100, 101, 109,
                                     103, 111, 105, 107, 113, 106, 64,  79,  80,  90};
    return codes;
}

}  // namespace quietlark::HotkeyParse
