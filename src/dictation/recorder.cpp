#include "dictation/recorder.h"

#include <cmath>
#include <limits>
#include <utility>

#include <QCoreApplication>

namespace quietlark {
namespace {

constexpr std::uint32_t tapBufferFrames = 4096;

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(Recorder)
};

tl::unexpected<RecorderError> failure(RecorderError::Code code, const QString& description) {
    return tl::unexpected(RecorderError{QStringLiteral("Recorder"), code, description});
}

bool isUsable(const AudioFormat& format) {
    return format.channels > 0 && format.sampleRateHz > 0;
}

// The header of the recording holds the rate as a whole number of 32 bits.
bool isTargetRate(double rateHz) {
    return rateHz >= 1 && rateHz <= std::numeric_limits<std::uint32_t>::max();
}

QString targetDescription(double sampleRateHz, std::uint16_t channels) {
    return QStringLiteral("%1 ch, %2 Hz, Int16").arg(channels).arg(sampleRateHz);
}

}  // namespace

Recorder::Recorder(double sampleRateHz, AudioInput& input)
    : m_targetSampleRate(sampleRateHz), m_input(input) {}

Recorder::~Recorder() {
    m_input.removeTap();
    m_input.stop();
}

tl::expected<void, RecorderError> Recorder::start() {
    if (isRunning()) return {};
    {
        const std::scoped_lock lock(m_mutex);
        m_samples.clear();
    }
    const AudioFormat inputFormat = m_input.inputFormat();
    if (!isUsable(inputFormat))
        return failure(
            RecorderError::NoInputFormat,
            Sentences::tr(
                "No input audio format available — microphone permission may be denied."));
    if (!isTargetRate(m_targetSampleRate))
        return failure(RecorderError::NoTargetFormat,
                       Sentences::tr("Could not build target PCM16 format."));
    auto converter =
        SampleConverter::create(inputFormat.sampleRateHz, inputFormat.channels, m_targetSampleRate);
    if (!converter)
        return failure(RecorderError::NoConverter,
                       Sentences::tr("Could not build AVAudioConverter from %1 to %2")
                           .arg(inputFormat.description(),
                                targetDescription(m_targetSampleRate, m_targetChannels)));

    // Once this returns, the tap does not run: it may point to this recorder and to its converter.
    m_input.removeTap();
    {
        const std::scoped_lock lock(m_mutex);
        m_converter = std::move(converter);
    }
    m_input.installTap(tapBufferFrames, inputFormat,
                       [this](const AudioBuffer& buffer) { handle(buffer); });
    if (const auto started = m_input.start(); !started)
        return tl::unexpected(
            RecorderError{QStringLiteral("AudioInput"), 0, started.error().description});

    const std::scoped_lock lock(m_mutex);
    m_isRunning = true;
    return {};
}

std::optional<WavBytes> Recorder::stop() {
    m_input.removeTap();
    m_input.stop();

    const std::scoped_lock lock(m_mutex);
    m_converter.reset();
    m_isRunning = false;
    if (m_samples.empty()) return std::nullopt;
    auto recording =
        WAV::encode(m_samples, static_cast<std::uint32_t>(m_targetSampleRate), m_targetChannels);
    m_samples.clear();
    return recording;
}

bool Recorder::isRunning() const {
    const std::scoped_lock lock(m_mutex);
    return m_isRunning;
}

void Recorder::handle(const AudioBuffer& buffer) {
    const std::scoped_lock lock(m_mutex);
    // A late buffer of a recording that has ended is of no use.
    if (!m_converter) return;
    const auto converted = m_converter->convert(buffer.samples);
    m_samples.insert(m_samples.end(), converted.begin(), converted.end());
}

}  // namespace quietlark
