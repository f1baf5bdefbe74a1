#pragma once

#include <optional>

#include <QString>

#include "servers/apple_silicon_variant.h"

namespace quietlark {

class Processor;

/// What this computer is, found out on first use and the same from then on. Main thread.
class HardwareProfile {
public:
    explicit HardwareProfile(const Processor& processor);

    /// The processor's brand without blanks around it; empty if the system does not tell.
    [[nodiscard]] const QString& brandString() const;

    /// Absent for any processor but Apple's M series.
    [[nodiscard]] const std::optional<AppleSiliconVariant>& appleSiliconVariant() const;

private:
    const Processor& m_processor;
    mutable std::optional<QString> m_brandString;
    mutable std::optional<std::optional<AppleSiliconVariant>> m_variant;
};

}  // namespace quietlark
