#pragma once

#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "server/whisper_engine.h"
#include "support/wait.h"

namespace quietlark {

/// The engine with the stand-in as its child.
class WhisperEngineFixture : public testing::Test {
protected:
    WhisperEngineFixture() { std::signal(SIGPIPE, SIG_IGN); }

    void start(const std::string& behaviour, EngineSupervisor::Times times = quick()) {
        std::ofstream(m_model) << behaviour;
        m_engine = std::make_unique<WhisperEngine>(
            WhisperEngine::Settings{.program = QUIETLARK_WHISPER_STAND_IN,
                                    .modelFile = m_model,
                                    .onReadyChange = [this](bool isReady) { m_lost += !isReady; },
                                    .times = times},
            m_log);
    }

    static EngineSupervisor::Times quick() {
        return {.firstPause = std::chrono::milliseconds(10),
                .longestPause = std::chrono::milliseconds(100)};
    }

    /// The text of a recording of `length` samples that begins with `first`.
    tl::expected<std::string, EngineError> textOf(
        std::int16_t first, std::size_t length = 32000, std::string_view language = "",
        std::chrono::steady_clock::duration limit = std::chrono::seconds(60)) {
        std::vector<std::int16_t> samples(length);
        samples.front() = first;
        const auto transcript =
            m_engine->transcribe({.samples = samples,
                                  .language = language,
                                  .deadline = std::chrono::steady_clock::now() + limit});
        if (!transcript) return tl::unexpected(transcript.error());
        return transcript->text;
    }

    /// The process that was started last, as it says itself; 0 when it has not been heard yet.
    pid_t childId() const {
        const std::string text = "whisper.cpp: stand-in is process ";
        pid_t id = 0;
        for (const auto& line : m_log.lines())
            if (line.text.starts_with(text)) id = std::stoi(line.text.substr(text.size()));
        return id;
    }

    /// The same, once it has been heard.
    pid_t runningChild() {
        EXPECT_TRUE(waitUntil([this] { return childId() > 0; }));
        // A signal for process 0 would be for the tests' whole group.
        return childId() > 0 ? childId() : std::numeric_limits<pid_t>::max();
    }

    bool recovers() {
        return waitUntil([this] { return textOf(7).has_value(); });
    }

    QTemporaryDir m_folder;
    const std::string m_model = m_folder.filePath(QStringLiteral("ggml-test.bin")).toStdString();
    FakeLog m_log;
    std::atomic<int> m_lost = 0;
    std::unique_ptr<WhisperEngine> m_engine;
};

}  // namespace quietlark
