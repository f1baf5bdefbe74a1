#pragma once

#include <mutex>
#include <vector>

#include "platform/audio_input.h"

namespace quietlark {

/// Remembers what a tap was given. Any thread.
class Ear {
public:
    [[nodiscard]] AudioInput::Tap tap() {
        return [this](const AudioBuffer& buffer) {
            const std::scoped_lock lock(m_mutex);
            m_buffers.emplace_back(buffer.samples.begin(), buffer.samples.end());
            m_formats.push_back(buffer.format);
        };
    }

    [[nodiscard]] std::vector<std::vector<float>> buffers() const {
        const std::scoped_lock lock(m_mutex);
        return m_buffers;
    }

    [[nodiscard]] std::vector<AudioFormat> formats() const {
        const std::scoped_lock lock(m_mutex);
        return m_formats;
    }

    /// All of it, one buffer after the other.
    [[nodiscard]] std::vector<float> heard() const {
        const std::scoped_lock lock(m_mutex);
        std::vector<float> all;
        for (const auto& buffer : m_buffers)
            all.insert(all.end(), buffer.begin(), buffer.end());
        return all;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::vector<float>> m_buffers;
    std::vector<AudioFormat> m_formats;
};

}  // namespace quietlark
