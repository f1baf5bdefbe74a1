#include "app/window_style.h"

#include <QCoreApplication>

namespace quietlark {

WindowStyle onboardingStyle() {
    return {QCoreApplication::translate("WindowStyle", "Welcome to Quietlark"), QSize(620, 500)};
}

WindowStyle permissionsAlertStyle() {
    return {QCoreApplication::translate("WindowStyle", "Quietlark needs permissions"),
            QSize(460, 300), true};
}

}  // namespace quietlark
