#pragma once

#include <chrono>
#include <string>

#include "platform/log.h"
#include "server/speech_engine.h"

namespace quietlark {

/// Speaks to a running whisper.cpp server on this computer. Any thread; one connection per call.
class WhisperClient {
public:
    /// Where it listens, and below which path: one that only we know, for that server lets every
    /// web page ask it.
    struct Address {
        int port = 0;
        std::string path;
    };

    enum class Health { Ready, Loading, NoAnswer };

    WhisperClient(Address address, Log& log);

    /// What it says of itself. A version that does not know the question is ready when it shows its
    /// page. Another program, at an address that was meant for it, is as good as none.
    [[nodiscard]] Health health(std::chrono::milliseconds limit) const;

    /// Has a recording transcribed; `language` is one of whisperLanguage(). Of the prompt only the
    /// last 1000 bytes are sent, about as much as Whisper heeds. Unavailable means that the
    /// connection was lost.
    [[nodiscard]] tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request, const std::string& language) const;

private:
    Address m_address;
    Log& m_log;
};

}  // namespace quietlark
