#pragma once

#include <optional>

#include <QString>

#include "platform/installation.h"
#include "platform/user_defaults.h"

namespace quietlark {

/// The application as installed: whether it lies where applications belong, and whether it is still
/// the one that the local server was registered from. Main thread.
class Bundle {
public:
    Bundle(const Installation& installation, UserDefaults& defaults);

    /// Whether the bundle's path begins with an application root, letter case included.
    [[nodiscard]] bool isInApplications() const;

    /// The modification time of the executable: seconds since 1970 as the shortest decimal text
    /// that reads back as the same number, always with a fraction. Absent when it is not known.
    [[nodiscard]] std::optional<QString> executableFingerprint() const;

    /// Whether rememberRegisteredExecutable() was last called with this very executable in place.
    /// An executable whose fingerprint is not known counts as the same.
    [[nodiscard]] bool isRegisteredExecutable() const;

    /// Notes that the local server has been registered from the present executable.
    void rememberRegisteredExecutable();

private:
    const Installation& m_installation;
    UserDefaults& m_defaults;
};

}  // namespace quietlark
