#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include <QString>
#include <tl/expected.hpp>

#include "platform/unavailable.h"

namespace quietlark {

/// Format of 32-bit float samples, interleaved.
struct AudioFormat {
    double sampleRateHz = 0;
    std::uint32_t channels = 0;

    /// Such as "2 ch, 48000 Hz, Float32".
    [[nodiscard]] QString description() const {
        return QStringLiteral("%1 ch, %2 Hz, Float32").arg(channels).arg(sampleRateHz);
    }
    bool operator==(const AudioFormat&) const = default;
};

/// A stretch of sound, valid only during the call that hands it over.
struct AudioBuffer {
    AudioFormat format;
    std::span<const float> samples;  ///< interleaved, nominally -1 to 1

    [[nodiscard]] std::size_t frames() const {
        return format.channels == 0 ? 0 : samples.size() / format.channels;
    }
};

/// Why capture did not start.
struct AudioInputError {
    QString description;  ///< one sentence for the user
};

/// The default microphone. All calls on the main thread; the tap is called on the audio thread.
class AudioInput {
public:
    using Tap = std::function<void(const AudioBuffer&)>;

    virtual ~AudioInput() = default;

    /// The microphone's present format; no channels or no rate means no usable input. Never waits.
    [[nodiscard]] virtual AudioFormat inputFormat() const = 0;

    /// Why nothing can be recorded at this moment, or nothing when something can. Never waits.
    [[nodiscard]] virtual std::optional<Unavailable> unavailable() const = 0;

    /// Has buffers of about `bufferFrames` frames in `format` handed to `tap` while running,
    /// replacing any earlier tap.
    virtual void installTap(std::uint32_t bufferFrames, AudioFormat format, Tap tap) = 0;

    /// Hands over what has been heard up to now and not yet been delivered, then lets go of the
    /// tap: it is not running, and will not run again, once this returns. Waits for the audio
    /// server no longer than 100 ms. Harmless without a tap.
    virtual void removeTap() = 0;

    /// Opens the microphone. Returns at once; sound follows through the tap.
    [[nodiscard]] virtual tl::expected<void, AudioInputError> start() = 0;

    /// Closes the microphone; harmless when it is not open.
    virtual void stop() = 0;
};

}  // namespace quietlark
