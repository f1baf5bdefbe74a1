#include "server/speech.h"

#include <bit>

#include <QFile>
#include <QTemporaryDir>

#include "audio/wav_file.h"
#include "peers/child_process.h"

namespace quietlark {
namespace {

constexpr std::uint32_t rateHz = 16000;

void append(WavBytes& bytes, std::uint32_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

/// A file of one channel; `format` is 1 for integers and 3 for floating point.
WavBytes fileOf(std::uint32_t format, std::uint32_t bytesPerSample, const WavBytes& data) {
    const auto size = static_cast<std::uint32_t>(data.size());
    WavBytes file{'R', 'I', 'F', 'F'};
    append(file, size + 36, 4);
    for (const char character : {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '})
        file.push_back(static_cast<std::uint8_t>(character));
    append(file, 16, 4);
    append(file, format, 2);
    append(file, 1, 2);
    append(file, rateHz, 4);
    append(file, rateHz * bytesPerSample, 4);
    append(file, bytesPerSample, 2);
    append(file, 8 * bytesPerSample, 2);
    for (const char character : {'d', 'a', 't', 'a'})
        file.push_back(static_cast<std::uint8_t>(character));
    append(file, size, 4);
    file.insert(file.end(), data.begin(), data.end());
    return file;
}

}  // namespace

std::vector<std::int16_t> speech(const QString& sentence) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("speech.wav")));
    ChildProcess flite(QStringLiteral("flite"),
                       {QStringLiteral("-voice"), QStringLiteral("rms"), QStringLiteral("--setf"),
                        QStringLiteral("duration_stretch=1.2"), QStringLiteral("-t"), sentence,
                        QStringLiteral("-o"), file.fileName()});
    (void)flite.readAll();
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray bytes = file.readAll();
    const auto wav = WavFile::parse(
        {reinterpret_cast<const std::uint8_t*>(bytes.constData()), std::size_t(bytes.size())});
    return wav ? wav->convertedTo(rateHz) : std::vector<std::int16_t>();
}

WavBytes resampled(const std::vector<std::int16_t>& samples, std::uint32_t newRateHz,
                   std::uint16_t channels) {
    const WavBytes original = WAV::encode(samples, rateHz, 1);
    const auto mono = WavFile::parse(original)->convertedTo(newRateHz);
    std::vector<std::int16_t> interleaved;
    interleaved.reserve(mono.size() * channels);
    for (const std::int16_t sample : mono)
        interleaved.insert(interleaved.end(), channels, sample);
    return WAV::encode(interleaved, newRateHz, channels);
}

WavBytes asUnsigned8(const std::vector<std::int16_t>& samples) {
    WavBytes data;
    for (const std::int16_t sample : samples)
        data.push_back(static_cast<std::uint8_t>((sample >> 8) + 128));
    return fileOf(1, 1, data);
}

WavBytes asFloat32(const std::vector<std::int16_t>& samples) {
    WavBytes data;
    for (const std::int16_t sample : samples)
        append(data, std::bit_cast<std::uint32_t>(static_cast<float>(sample) / 32768.0F), 4);
    return fileOf(3, 4, data);
}

}  // namespace quietlark
