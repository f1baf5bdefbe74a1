#pragma once

#include <memory>
#include <utility>

#include "platform/key_capture.h"

namespace quietlark {

/// Key presses played by the test.
class FakeKeyCapture final : public KeyCapture {
public:
    [[nodiscard]] Cancellable capture(Handler handler) override {
        m_handler = std::make_shared<Handler>(std::move(handler));
        return Cancellable([this, mine = std::weak_ptr(m_handler)] {
            if (m_handler == mine.lock()) m_handler.reset();
        });
    }

    [[nodiscard]] bool holdsKeys() const override { return m_handler != nullptr; }

    /// Answers whether a capture has taken the press.
    bool press(KeyCode key, ModifierFlags flags = 0) {
        const auto handler = m_handler;
        if (!handler) return false;
        (*handler)({KeyEvent::Kind::KeyDown, key, flags});
        return true;
    }

private:
    std::shared_ptr<Handler> m_handler;
};

}  // namespace quietlark
