#pragma once

#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "server/fake_speech_engine.h"
#include "server/speech_server.h"

namespace quietlark {

/// A server that answers, on a port of its own, until it is gone.
class LivingServer {
public:
    explicit LivingServer(const std::string& host = "127.0.0.1")
        : m_isBound(m_server.bind(host, 0).has_value()) {
        if (m_isBound) m_thread = std::thread([this] { EXPECT_TRUE(m_server.run()); });
    }
    ~LivingServer() {
        if (!m_isBound) return;
        m_server.stop();
        m_thread.join();
    }
    LivingServer(const LivingServer&) = delete;
    LivingServer& operator=(const LivingServer&) = delete;

    /// False where this computer does not have the address.
    [[nodiscard]] bool isBound() const { return m_isBound; }
    [[nodiscard]] int port() const { return m_server.port(); }

private:
    FakeSpeechEngine m_engine;
    FakeLog m_log;
    HttpApi m_api{m_engine, {}};
    SpeechServer m_server{m_api, m_log};
    const bool m_isBound;
    std::thread m_thread;
};

}  // namespace quietlark
