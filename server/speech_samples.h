#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <utility>
#include <vector>

namespace quietlark {

/// The samples of a recording: a view of some that are kept elsewhere, or made when they are first
/// asked for, so that a recording that waits takes no more memory than its file. One thread at a
/// time.
class SpeechSamples {
public:
    using Maker = std::function<std::vector<std::int16_t>()>;

    SpeechSamples() = default;
    SpeechSamples(std::span<const std::int16_t> samples) : m_samples(samples) {}
    SpeechSamples(const std::vector<std::int16_t>& samples) : m_samples(samples) {}
    explicit SpeechSamples(Maker make) : m_make(std::move(make)) {}
    SpeechSamples(const SpeechSamples&) = delete;
    SpeechSamples& operator=(const SpeechSamples&) = delete;

    [[nodiscard]] std::span<const std::int16_t> get() const {
        if (const auto make = std::exchange(m_make, nullptr)) {
            m_made = make();
            m_samples = m_made;
        }
        return m_samples;
    }

private:
    mutable Maker m_make;
    mutable std::vector<std::int16_t> m_made;
    mutable std::span<const std::int16_t> m_samples;
};

}  // namespace quietlark
