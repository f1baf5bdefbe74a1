#pragma once

#include <optional>

#include <QString>
#include <QStringList>

namespace quietlark {

/// Where and since when this program is installed. Main thread.
class Installation {
public:
    virtual ~Installation() = default;

    /// Path of the directory that is the program's own, or of the executable where it shares its
    /// directories with other programs. Absolute, without a final slash.
    [[nodiscard]] virtual QString bundlePath() const = 0;

    /// What the system knows the program by; absent for one that it knows nothing of.
    [[nodiscard]] virtual std::optional<QString> bundleIdentifier() const = 0;

    /// Directories that applications are installed below, each with its final slash.
    [[nodiscard]] virtual QStringList applicationRoots() const = 0;

    /// When the executable file was last modified, in seconds since 1970; read afresh at each call
    /// and absent when it cannot be.
    [[nodiscard]] virtual std::optional<double> executableModificationDate() const = 0;
};

}  // namespace quietlark
