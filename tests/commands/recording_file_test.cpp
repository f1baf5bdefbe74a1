#include "commands/recording_file.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "commands/recording.h"

namespace quietlark {
namespace {

class RecordingFileTest : public testing::Test {
protected:
    tl::expected<WavBytes, QString> readingOf(const QByteArray& content) {
        QFile file(m_path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        return readRecording(m_path);
    }
    void expectSentence(const tl::expected<WavBytes, QString>& reading) {
        ASSERT_FALSE(reading);
        EXPECT_TRUE(reading.error().startsWith(m_path)) << reading.error().toStdString();
        EXPECT_TRUE(reading.error().endsWith(u'.')) << reading.error().toStdString();
        EXPECT_FALSE(reading.error().contains(u'\n'));
    }

    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(QStringLiteral("a.wav"));
};

TEST_F(RecordingFileTest, FileInTheFormOfUploadsKeepsItsLength) {
    const auto wav = readingOf(recording());
    ASSERT_TRUE(wav);
    EXPECT_EQ(wav->size(), static_cast<std::size_t>(recording().size()));
}

TEST_F(RecordingFileTest, OtherRatesAndChannelsAreConverted) {
    const std::vector<std::int16_t> stereo(2 * 48000, 1000);
    const WavBytes source = WAV::encode(stereo, 48000, 2);
    const auto wav = readingOf(QByteArray(reinterpret_cast<const char*>(source.data()),
                                          static_cast<qsizetype>(source.size())));
    ASSERT_TRUE(wav);
    // One second, give or take the resampler's last block.
    EXPECT_NEAR(static_cast<double>(wav->size()), 44 + 2 * 16000, 200);
}

TEST_F(RecordingFileTest, MissingFileIsASentence) {
    expectSentence(readRecording(m_path));
}

TEST_F(RecordingFileTest, DirectoryIsASentence) {
    ASSERT_TRUE(QDir().mkdir(m_path));
    expectSentence(readRecording(m_path));
}

TEST_F(RecordingFileTest, WhatIsNoRecordingIsASentence) {
    expectSentence(readingOf(""));
    expectSentence(readingOf("hello"));
    expectSentence(readingOf(QByteArray(100 * 1000, '\0')));
}

TEST_F(RecordingFileTest, RecordingCutAnywhereIsASentence) {
    const QByteArray whole = recording();
    for (qsizetype length = 0; length < whole.size(); length += 11) {
        expectSentence(readingOf(whole.first(length)));
    }
}

TEST_F(RecordingFileTest, RecordingOfManyHoursIsASentence) {
    const std::vector<std::int16_t> aSecond(8000);
    WavBytes head = WAV::encode(aSecond, 8000, 1);
    head.resize(44);
    // "To the end", of a file that takes up no room on the disk.
    std::fill(head.begin() + 40, head.end(), std::uint8_t{0xff});
    readingOf(QByteArray(reinterpret_cast<const char*>(head.data()), 44));
    ASSERT_TRUE(QFile::resize(m_path, qint64{8000} * 2 * 3600 * 5));
    expectSentence(readRecording(m_path));
}

TEST_F(RecordingFileTest, RecordingWithoutSoundIsASentence) {
    const WavBytes silent = WAV::encode({}, 16000, 1);
    expectSentence(readingOf(QByteArray(reinterpret_cast<const char*>(silent.data()),
                                        static_cast<qsizetype>(silent.size()))));
}

}  // namespace
}  // namespace quietlark
