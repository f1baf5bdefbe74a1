#include "ui/ink.h"

namespace quietlark {

QColor blended(const QColor& over, const QColor& under, double share) {
    const auto mix = [share](double a, double b) {
        return static_cast<float>(a * share + b * (1 - share));
    };
    return QColor::fromRgbF(mix(over.redF(), under.redF()), mix(over.greenF(), under.greenF()),
                            mix(over.blueF(), under.blueF()));
}

QColor secondaryText(const QPalette& palette) {
    return blended(palette.color(QPalette::Text), palette.color(QPalette::Base), 0.7);
}

QColor quietEdge(const QPalette& palette) {
    return blended(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.3);
}

}  // namespace quietlark
