#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "audio/wav.h"

namespace quietlark {

constexpr auto getModels = "GET /v1/models HTTP/1.1\r\nHost: localhost\r\n\r\n";

/// The head of an upload whose length nobody knows beforehand; the chunks of a form follow.
constexpr auto chunkedHead =
    "POST /inference HTTP/1.1\r\nContent-Type: multipart/form-data; boundary=B\r\n"
    "Transfer-Encoding: chunked\r\n\r\n";

inline std::string chunk(const std::string& bytes) {
    std::stringstream text;
    text << std::hex << bytes.size() << "\r\n" << bytes << "\r\n";
    return text.str();
}

/// Silence, as a file.
inline std::string wavOf(std::size_t samples, std::uint32_t rateHz = 16000,
                         std::uint16_t channels = 1) {
    const auto wav = WAV::encode(std::vector<std::int16_t>(samples), rateHz, channels);
    return {wav.begin(), wav.end()};
}

}  // namespace quietlark
