#pragma once

#include <cstdint>
#include <optional>

#include <QString>

namespace quietlark {

/// A processor of Apple's M series, and how fast it transcribes. Any thread.
struct AppleSiliconVariant {
    enum class Tier { base, pro, max, ultra };

    std::int64_t generation = 1;  ///< the number after "M", at least 1
    Tier tier = Tier::base;

    /// Understands a brand such as "Apple M2 Pro", in any case; absent for any other text, also for
    /// one that says more, such as the number of cores.
    [[nodiscard]] static std::optional<AppleSiliconVariant> parse(const QString& brand);

    /// The brand, such as "Apple M2 Pro".
    [[nodiscard]] QString displayName() const;

    /// Seconds of audio that the default model transcribes per second, by a table of our own for
    /// the generations 1 to 4; absent for any other.
    [[nodiscard]] std::optional<double> estimatedRTF() const;

    bool operator==(const AppleSiliconVariant&) const = default;
};

/// The tier's name: "base", "pro", "max" or "ultra".
[[nodiscard]] QString rawValue(AppleSiliconVariant::Tier tier);

}  // namespace quietlark
