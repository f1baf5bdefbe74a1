#include "commands/recording_file.h"

#include <cstdio>

#include <QCoreApplication>
#include <QFile>

#include "audio/wav_file.h"

namespace quietlark {

namespace {

// An hour at 48 kHz in stereo is 690 MB.
constexpr qint64 maxFileBytes = qint64{1024} * 1024 * 1024;
constexpr qint64 pieceBytes = qint64{1024} * 1024;
// Low rates hold many hours in a file of that size, and grow when they are converted.
constexpr std::size_t maxSeconds = 4 * 3600;
constexpr std::uint32_t uploadRateHz = 16000;

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(RecordingFile)

public:
    static QString unreadable(const QString& path, const QString& reason) {
        return tr("%1 cannot be read: %2.").arg(path, reason);
    }
    static QString tooLong(const QString& path) { return tr("%1 is too long.").arg(path); }
    static QString unusable(const QString& path, const std::string& sentence) {
        return tr("%1: %2").arg(path, QString::fromStdString(sentence));
    }
    static QString silent(const QString& path) { return tr("%1 has no sound in it.").arg(path); }
};

tl::expected<QByteArray, QString> readAll(const QString& path) {
    QFile file(path);
    const bool isOpen = path == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                   : file.open(QIODevice::ReadOnly);
    if (!isOpen) return tl::unexpected(Sentences::unreadable(path, file.errorString()));
    QByteArray bytes;
    // In pieces: a pipe does not tell its length, and memory is set aside for all that is asked
    // for.
    for (QByteArray piece = file.read(pieceBytes); !piece.isEmpty();
         piece = file.read(pieceBytes)) {
        bytes += piece;
        if (bytes.size() > maxFileBytes) return tl::unexpected(Sentences::tooLong(path));
    }
    if (file.error() != QFileDevice::NoError) {
        return tl::unexpected(Sentences::unreadable(path, file.errorString()));
    }
    return bytes;
}

}  // namespace

tl::expected<WavBytes, QString> readRecording(const QString& path) {
    const auto bytes = readAll(path);
    if (!bytes) return tl::unexpected(bytes.error());
    const std::span<const std::uint8_t> view(
        reinterpret_cast<const std::uint8_t*>(bytes->constData()),
        static_cast<std::size_t>(bytes->size()));
    const auto sound = WavFile::parse(view);
    if (!sound) return tl::unexpected(Sentences::unusable(path, sound.error().description));
    if (sound->frames() / sound->sampleRateHz() > maxSeconds) {
        return tl::unexpected(Sentences::tooLong(path));
    }
    const std::vector<std::int16_t> samples = sound->convertedTo(uploadRateHz);
    if (samples.empty()) return tl::unexpected(Sentences::silent(path));
    return WAV::encode(samples, uploadRateHz, 1);
}

}  // namespace quietlark
