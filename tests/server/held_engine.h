#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "server/speech_engine.h"

namespace quietlark {

/// Notes who comes, by how many samples they bring, and keeps the first until it is let go.
class HeldEngine final : public SpeechEngine {
public:
    [[nodiscard]] std::string modelId() const override { return "held"; }
    [[nodiscard]] bool understands(std::string_view) const override { return true; }
    void stop() override { release(); }

    [[nodiscard]] bool isReady() const override { return true; }

    [[nodiscard]] tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request) override {
        std::unique_lock lock(m_mutex);
        m_isCrowded = m_isCrowded || m_isBusy;
        m_isBusy = true;
        m_order.push_back(request.samples.get().size());
        m_released.wait(lock, [this] { return m_isReleased; });
        m_isBusy = false;
        return Transcript();
    }

    void release() {
        const std::lock_guard lock(m_mutex);
        m_isReleased = true;
        m_released.notify_all();
    }

    std::vector<std::size_t> order() {
        const std::lock_guard lock(m_mutex);
        return m_order;
    }

    bool wasCrowded() {
        const std::lock_guard lock(m_mutex);
        return m_isCrowded;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_released;
    std::vector<std::size_t> m_order;
    bool m_isReleased = false;
    bool m_isBusy = false;
    bool m_isCrowded = false;
};

}  // namespace quietlark
