#pragma once

#include <QStringView>

namespace quietlark {

/// The text without the tabs and spaces, of any script, at its ends. Line ends stay.
[[nodiscard]] inline QStringView trimmedOfBlanks(QStringView text) {
    const auto isBlank = [](QChar c) {
        return c == u'\t' || c.category() == QChar::Separator_Space;
    };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

}  // namespace quietlark
