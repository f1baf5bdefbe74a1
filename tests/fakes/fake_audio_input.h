#pragma once

#include <cmath>
#include <mutex>
#include <numbers>
#include <optional>
#include <utility>
#include <vector>

#include "platform/audio_input.h"

namespace quietlark {

/// A microphone that hears what the test says. hear() may be called on any thread, which is then
/// the audio thread; everything else on the main thread.
class FakeAudioInput final : public AudioInput {
public:
    AudioFormat format{.sampleRateHz = 48000, .channels = 1};
    std::optional<AudioInputError> startError;

    [[nodiscard]] AudioFormat inputFormat() const override { return format; }

    [[nodiscard]] std::optional<Unavailable> unavailable() const override {
        if (format.channels > 0) return std::nullopt;
        return Unavailable{QStringLiteral("Plug in a microphone.")};
    }

    void installTap(std::uint32_t bufferFrames, AudioFormat tapFormat, Tap tap) override {
        const std::scoped_lock lock(m_mutex);
        m_bufferFrames = bufferFrames;
        m_tapFormat = tapFormat;
        m_tap = std::move(tap);
        m_undelivered.clear();
    }

    void removeTap() override {
        const std::scoped_lock lock(m_mutex);
        if (m_running && m_tap && !m_undelivered.empty()) deliver(m_undelivered.size());
        m_undelivered.clear();
        if (m_tap) m_formerTap = std::exchange(m_tap, nullptr);
    }

    [[nodiscard]] tl::expected<void, AudioInputError> start() override {
        if (startError) return tl::unexpected(*startError);
        const std::scoped_lock lock(m_mutex);
        m_running = true;
        return {};
    }

    void stop() override {
        const std::scoped_lock lock(m_mutex);
        m_running = false;
        m_undelivered.clear();
    }

    /// Sound reaches the microphone: interleaved samples in the tap's format.
    void hear(std::span<const float> samples) {
        const std::scoped_lock lock(m_mutex);
        if (!m_running || !m_tap) return;
        m_undelivered.insert(m_undelivered.end(), samples.begin(), samples.end());
        const std::size_t bufferSamples = std::size_t{m_bufferFrames} * m_tapFormat.channels;
        while (m_undelivered.size() >= bufferSamples)
            deliver(bufferSamples);
    }

    /// A steady 1 kHz tone of half the full scale, on all channels.
    void hearTone(std::size_t frames) {
        std::vector<float> samples;
        for (std::size_t i = 0; i < frames; ++i) {
            const double phase = 2 * std::numbers::pi * 1000 * double(i) / format.sampleRateHz;
            samples.insert(samples.end(), format.channels, float(0.5 * std::sin(phase)));
        }
        hear(samples);
    }

    /// Breaks the port's promise: calls the tap that was removed last.
    void callFormerTap(std::span<const float> samples) {
        if (m_formerTap) m_formerTap({.format = m_tapFormat, .samples = samples});
    }

    [[nodiscard]] bool isRunning() const {
        const std::scoped_lock lock(m_mutex);
        return m_running;
    }
    [[nodiscard]] bool hasTap() const {
        const std::scoped_lock lock(m_mutex);
        return m_tap != nullptr;
    }
    [[nodiscard]] std::uint32_t bufferFrames() const { return m_bufferFrames; }
    [[nodiscard]] AudioFormat tapFormat() const { return m_tapFormat; }

private:
    void deliver(std::size_t sampleCount) {
        m_tap({.format = m_tapFormat, .samples = std::span(m_undelivered).first(sampleCount)});
        m_undelivered.erase(m_undelivered.begin(),
                            m_undelivered.begin() + std::ptrdiff_t(sampleCount));
    }

    mutable std::mutex m_mutex;  // held while the tap runs, so that removeTap() waits for it
    std::uint32_t m_bufferFrames = 0;
    AudioFormat m_tapFormat;
    Tap m_tap;
    Tap m_formerTap;
    std::vector<float> m_undelivered;
    bool m_running = false;
};

}  // namespace quietlark
