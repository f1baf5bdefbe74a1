#pragma once

#include <QSize>
#include <QString>

namespace quietlark {

/// How a window is framed. All have a title bar and can be closed, none can be resized, and they
/// open in the middle of the screen.
struct WindowStyle {
    QString title;
    QSize contentSize;        ///< in points
    bool isFloating = false;  ///< stays above the windows of other applications

    bool operator==(const WindowStyle&) const = default;
};

[[nodiscard]] WindowStyle onboardingStyle();
[[nodiscard]] WindowStyle permissionsAlertStyle();

}  // namespace quietlark
