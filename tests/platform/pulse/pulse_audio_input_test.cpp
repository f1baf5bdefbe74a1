#include "platform/linux/pulse/pulse_audio_input.h"

#include <functional>

#include <gtest/gtest.h>

#include "peers/pulse_server.h"
#include "platform/pulse/ear.h"
#include "platform/pulse/pipe_microphone.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

constexpr AudioFormat mono48k{.sampleRateHz = 48000, .channels = 1};
constexpr AudioFormat mono16k{.sampleRateHz = 16000, .channels = 1};
constexpr AudioFormat stereo48k{.sampleRateHz = 48000, .channels = 2};
constexpr AudioFormat noMicrophone{};

QStringList pipeMicrophone() {
    return {PulseServer::pipeMicrophone(QStringLiteral("microphone"))};
}

/// A PulseAudioInput at a server, listened to by an ear.
class Desk {
public:
    explicit Desk(const QStringList& modules, std::chrono::milliseconds longestWait = 20s)
        : server(modules), input(server.address(), longestWait) {}

    bool formatBecomes(AudioFormat format) {
        return waitUntil([&] { return input.inputFormat() == format; });
    }
    void listen() {
        input.installTap(4096, input.inputFormat(), ear.tap());
        ASSERT_TRUE(input.start());
        ASSERT_TRUE(waitUntil([&] { return server.recordStreams() == 1; }));
    }
    bool hears(std::size_t samples) {
        return waitUntil([&] { return ear.heard().size() >= samples; });
    }
    QByteArray pactl(const char* arguments) {
        return server.pactl(QString::fromLatin1(arguments).split(QLatin1Char(' ')));
    }

    /// The server's numbers of the connections that this process has.
    QByteArray client() {
        QByteArray numbers;
        for (const QByteArray& line : pactl("list short clients").split('\n')) {
            // Number, protocol and program; pactl itself is a client as well.
            if (!line.isEmpty() && !line.contains("pactl"))
                numbers += line.split('\t').first() + ' ';
        }
        return numbers;
    }

    PulseServer server;
    Ear ear;
    PulseAudioInput input;
};

TEST(PulseAudioInput, WithoutAServerThereIsNoMicrophone) {
    PulseAudioInput input("unix:/nonexistent/server");
    EXPECT_EQ(input.inputFormat(), noMicrophone);
    input.installTap(4096, mono48k, [](const AudioBuffer&) {});
    const auto started = input.start();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().description, QStringLiteral("The audio server does not answer."));
}

TEST(PulseAudioInput, TheFormatIsTheDefaultSources) {
    Desk desk({PulseServer::pipeMicrophone(QStringLiteral("microphone"), 16000)});
    EXPECT_TRUE(desk.formatBecomes(mono16k));
}

TEST(PulseAudioInput, AMonitorIsNoMicrophoneWhenThereIsNothingElse) {
    Desk desk({QStringLiteral("module-null-sink sink_name=speaker")});
    // When the microphone shows, and goes, what came before it has been seen too.
    desk.pactl(
        "load-module module-remap-source master=speaker.monitor source_name=microphone "
        "rate=48000 channels=1 master_channel_map=left channel_map=mono");
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.pactl("unload-module module-remap-source");
    EXPECT_TRUE(desk.formatBecomes(noMicrophone));
}

TEST(PulseAudioInput, AMonitorThatTheUserChoseIsAMicrophone) {
    Desk desk(pipeMicrophone() << PulseServer::loopback().first());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.pactl("set-default-source speaker.monitor");
    EXPECT_TRUE(desk.formatBecomes(stereo48k));
}

TEST(PulseAudioInput, TheUsersChoiceIsFollowedFromOneRecordingToTheNext) {
    Desk desk(pipeMicrophone() << PulseServer::pipeMicrophone(QStringLiteral("headset"), 16000));
    desk.pactl("set-default-source microphone");
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.listen();
    desk.input.removeTap();
    desk.input.stop();

    desk.pactl("set-default-source headset");
    ASSERT_TRUE(desk.formatBecomes(mono16k));
    desk.listen();
    const auto spoken = distinctSamples(1000);
    PipeMicrophone(desk.server, QStringLiteral("headset")).speak(spoken);
    desk.input.removeTap();
    EXPECT_EQ(desk.ear.heard(), spoken);
}

TEST(PulseAudioInput, AMicrophoneThatIsReplacedHasANewFormat) {
    Desk desk(pipeMicrophone());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.pactl("unload-module module-pipe-source");
    ASSERT_TRUE(desk.formatBecomes(noMicrophone));
    desk.pactl("load-module module-pipe-source source_name=other file=other rate=16000 channels=1");
    EXPECT_TRUE(desk.formatBecomes(mono16k));
}

TEST(PulseAudioInput, NoStreamIsOpenButWhileRecording) {
    Desk desk(pipeMicrophone());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    EXPECT_EQ(desk.server.recordStreams(), 0);
    desk.listen();
    EXPECT_EQ(desk.server.recordStreams(), 1);
    desk.input.removeTap();
    desk.input.stop();
    EXPECT_TRUE(waitUntil([&] { return desk.server.recordStreams() == 0; }));
}

TEST(PulseAudioInput, TheConnectionIsTheSameForEveryRecording) {
    Desk desk(pipeMicrophone());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.listen();
    const QByteArray first = desk.client();
    EXPECT_FALSE(first.isEmpty());
    desk.input.removeTap();
    desk.input.stop();
    ASSERT_TRUE(waitUntil([&] { return desk.server.recordStreams() == 0; }));
    EXPECT_EQ(desk.client(), first);
    desk.listen();
    EXPECT_EQ(desk.client(), first);
}

TEST(PulseAudioInput, AStreamThatIsFinishedBeforeItOpenedStillHandsOverWhatWasSaid) {
    Desk desk(pipeMicrophone());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.input.installTap(4096, mono48k, desk.ear.tap());
    ASSERT_TRUE(desk.input.start());
    // A server that nobody records from does not read its pipe.
    PipeMicrophone(desk.server).speak(distinctSamples(1000));
    desk.input.removeTap();
    EXPECT_FALSE(desk.ear.heard().empty());
}

TEST(PulseAudioInput, AStreamThatWasStoppedBeforeItOpenedDoesNotStayOpen) {
    Desk desk(pipeMicrophone());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    for (int i = 0; i < 20; ++i) {
        desk.input.installTap(4096, mono48k, desk.ear.tap());
        ASSERT_TRUE(desk.input.start());
        desk.input.stop();
    }
    // Streams open in order: with the last one heard, all of them have been.
    desk.input.installTap(1, mono48k, desk.ear.tap());
    ASSERT_TRUE(desk.input.start());
    PipeMicrophone microphone(desk.server);
    ASSERT_TRUE(waitUntil([&] {
        microphone.speak(distinctSamples(10));
        return !desk.ear.buffers().empty();
    }));
    EXPECT_TRUE(waitUntil([&] { return desk.server.recordStreams() == 1; }));
}

TEST(PulseAudioInput, DesktopsSeeWhoIsRecording) {
    Desk desk(pipeMicrophone());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.listen();
    const QByteArray streams = desk.pactl("list source-outputs");
    EXPECT_TRUE(streams.contains("application.id = \"net.quietlark.app\""));
    EXPECT_TRUE(streams.contains("application.name = \"Quietlark\""));
    EXPECT_TRUE(streams.contains("media.name = \"Dictation\""));
}

TEST(PulseAudioInput, AfterTheServerWasStartedAgainTheNextRecordingWorks) {
    Desk desk(pipeMicrophone());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.server.end();
    ASSERT_TRUE(desk.formatBecomes(noMicrophone));
    desk.server.start();
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.listen();
    const auto spoken = distinctSamples(5000);
    PipeMicrophone(desk.server).speak(spoken);
    desk.input.removeTap();
    EXPECT_EQ(desk.ear.heard(), spoken);
}

/// What was heard before `happen` took the microphone away in the middle of a recording arrives.
void expectNothingHeardIsLost(const std::function<void(Desk&)>& happen) {
    Desk desk(pipeMicrophone());
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.listen();
    const auto spoken = distinctSamples(4096);
    PipeMicrophone(desk.server).speak(spoken);
    ASSERT_TRUE(desk.hears(4096));
    happen(desk);
    ASSERT_TRUE(desk.formatBecomes(noMicrophone));
    desk.input.removeTap();
    desk.input.stop();
    EXPECT_EQ(desk.ear.heard(), spoken);
}

TEST(PulseAudioInput, AServerThatDiesInMidRecordingTakesNothingHeardWithIt) {
    expectNothingHeardIsLost([](Desk& desk) { desk.server.end(); });
}

TEST(PulseAudioInput, AMicrophoneUnpluggedInMidRecordingTakesNothingHeardWithIt) {
    expectNothingHeardIsLost([](Desk& desk) { desk.pactl("unload-module module-pipe-source"); });
}

TEST(PulseAudioInput, AServerThatHangsIsNotWaitedForLong) {
    Desk desk(pipeMicrophone(), 100ms);
    ASSERT_TRUE(desk.formatBecomes(mono48k));
    desk.listen();
    const auto spoken = distinctSamples(4096);
    PipeMicrophone(desk.server).speak(spoken);
    ASSERT_TRUE(desk.hears(4096));
    desk.server.freeze();
    desk.input.removeTap();
    desk.input.stop();
    desk.server.thaw();
    EXPECT_EQ(desk.ear.heard(), spoken);
}

TEST(PulseAudioInput, ItMayGoWhileRecording) {
    PulseServer server(pipeMicrophone());
    {
        PulseAudioInput input(server.address());
        ASSERT_TRUE(waitUntil([&] { return input.inputFormat() == mono48k; }));
        input.installTap(4096, mono48k, [](const AudioBuffer&) {});
        ASSERT_TRUE(input.start());
        ASSERT_TRUE(waitUntil([&] { return server.recordStreams() == 1; }));
    }
    EXPECT_TRUE(waitUntil([&] { return server.recordStreams() == 0; }));
}

}  // namespace
}  // namespace quietlark
