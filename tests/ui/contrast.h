#pragma once

#include <algorithm>
#include <cmath>

#include <QColor>

namespace quietlark {

/// Of the relative luminances, as WCAG 2 has it: from 1 for equals to 21.
inline double contrast(const QColor& one, const QColor& other) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace quietlark
