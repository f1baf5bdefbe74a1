#pragma once

#include <QByteArray>

#include "audio/wav.h"

namespace quietlark {

/// A file of one tenth of a second of a saw-tooth, as it is uploaded.
inline QByteArray recording() {
    std::vector<std::int16_t> samples(1600);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::int16_t>(i * 64 % 16000);
    }
    const WavBytes wav = WAV::encode(samples, 16000, 1);
    return QByteArray(reinterpret_cast<const char*>(wav.data()),
                      static_cast<qsizetype>(wav.size()));
}

}  // namespace quietlark
