#include <csignal>

#include <gtest/gtest.h>

#include "audio/wav.h"
#include "server/raw_http_client.h"
#include "server/server_load.h"
#include "server/stand_in_server.h"
#include "support/wait.h"

namespace quietlark {
namespace {

std::string uploadOf(std::int16_t first, std::size_t length = 32000) {
    std::vector<std::int16_t> samples(length);
    samples.front() = first;
    const WavBytes wav = WAV::encode(samples, 16000, 1);
    return postOf("/inference", formOf({reinterpret_cast<const char*>(wav.data()), wav.size()}));
}

std::string asked(const WhisperServer& server, const std::string& request) {
    return RawHttpClient(server.port()).ask(request).body;
}

}  // namespace

TEST(WhisperServerTest, WithItsProgramAndAModelWhisperTranscribes) {
    StandInServer server("load 100");
    EXPECT_TRUE(server.start().starts_with("listening on http://127.0.0.1:"));
    EXPECT_EQ(asked(server, uploadOf(7)), R"({"text":"samples=32000 first=7 language=auto"})");
    EXPECT_NE(asked(server, "GET /v1/models HTTP/1.1\r\n\r\n").find("whisper-active"),
              std::string::npos);
}

TEST(WhisperServerTest, TheSpeedAtTheStartIsThatOfTheEngineWithoutItsLoading) {
    StandInServer server("load 3000\nspeed 2");
    ASSERT_FALSE(server.start().empty());
    EXPECT_GT(server.publishedSpeed(), 1.2);
}

TEST(WhisperServerTest, TheSpeedOfRealRequestsIsMadeKnown) {
    StandInServer server("answer 500");
    server.start();
    const double first = server.publishedSpeed();
    ASSERT_GT(first, 0);
    EXPECT_TRUE(waitUntil([&] {
        asked(server, uploadOf(7, 30 * 16000));
        return server.publishedSpeed() > 1.5 * first;
    }));
}

TEST(WhisperServerTest, TheLimitsOfTheOptionsHold) {
    StandInServer server("");
    server.start({QStringLiteral("--max-audio=1")});
    EXPECT_NE(asked(server, uploadOf(7, 32000)).find("longer than this server takes"),
              std::string::npos);
    EXPECT_EQ(asked(server, uploadOf(7, 15999)),
              R"({"text":"samples=17600 first=7 language=auto"})");
}

TEST(WhisperServerTest, PathsInTheOptionsAreThoseOfTheFolderItIsStartedIn) {
    StandInServer server("");
    const auto here = [](const QString& path) { return QDir::current().relativeFilePath(path); };
    server.start(
        {QStringLiteral("--engine=whisper"), QStringLiteral("--model=") + here(server.modelFile()),
         QStringLiteral("--whisper-server=./") + here(QStringLiteral(QUIETLARK_WHISPER_STAND_IN))});
    EXPECT_EQ(asked(server, uploadOf(7)), R"({"text":"samples=32000 first=7 language=auto"})");
}

TEST(WhisperServerTest, TheLanguageOfTheOptionsReachesTheEngine) {
    StandInServer server("");
    server.start({QStringLiteral("--language=de")});
    EXPECT_NE(asked(server, uploadOf(7)).find("language=de"), std::string::npos);
}

TEST(WhisperServerTest, AWhisperThatDoesNotWorkIsReplacedByPocketSphinx) {
    StandInServer server("exit 1");
    EXPECT_FALSE(server.start().empty());
    EXPECT_NE(asked(server, "GET /v1/models HTTP/1.1\r\n\r\n").find("pocketsphinx"),
              std::string::npos);
    EXPECT_TRUE(server.hasEndpointFile());
}

TEST(WhisperServerTest, AWhisperThatWasAskedForAndDoesNotWorkIsAFailure) {
    StandInServer server("exit 1");
    EXPECT_TRUE(server.start({QStringLiteral("--engine=whisper")}).empty());
    EXPECT_EQ(server.process().exitCode(), 1);
    EXPECT_FALSE(server.hasEndpointFile());
}

TEST(WhisperServerTest, WhatCannotBeServedIsSaidBeforeTheModelIsLoaded) {
    StandInServer first("");
    first.start();
    StandInServer second("load 1000000");
    const auto failsWith = [&](const QString& argument) {
        return second.start({argument}).empty() &&
               waitUntil([&] { return !second.process().isRunning(); }) &&
               second.process().exitCode() == 1;
    };
    EXPECT_TRUE(failsWith(QStringLiteral("--port=%1").arg(first.port())));
    EXPECT_TRUE(failsWith(QStringLiteral("--endpoint-file=/nowhere/endpoint")));
}

TEST(WhisperServerTest, ItMayBeStoppedWhileTheModelIsLoaded) {
    StandInServer server("load 100000");
    server.launch();
    ASSERT_TRUE(waitUntil([&] { return server.engineId() > 0; }));
    kill(static_cast<pid_t>(server.process().processId()), SIGTERM);
    ASSERT_TRUE(waitUntil([&] { return !server.process().isRunning(); }));
    EXPECT_EQ(server.process().exitCode(), 0);
}

TEST(WhisperServerTest, TheEndpointFileIsThereOnlyWhileItCanTranscribe) {
    StandInServer server("");
    server.start();
    EXPECT_TRUE(server.hasEndpointFile());
    const pid_t engine = server.engineId();
    ASSERT_GT(engine, 0);
    kill(engine, SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !server.hasEndpointFile(); }));
    EXPECT_TRUE(waitUntil([&] { return server.hasEndpointFile(); }));
    EXPECT_NE(server.engineId(), engine);
}

TEST(WhisperServerTest, AnEndpointFileThatIsDeletedComesBack) {
    StandInServer server("");
    server.start();
    ASSERT_TRUE(QFile::remove(server.endpointFile()));
    EXPECT_TRUE(waitUntil([&] { return server.hasEndpointFile(); }, std::chrono::minutes(1)));
}

TEST(WhisperServerTest, TheEngineEndsWithTheServerHoweverThatEnds) {
    for (const int signal : {SIGTERM, SIGKILL}) {
        StandInServer server("");
        ASSERT_FALSE(server.start().empty());
        const pid_t engine = server.engineId();
        ASSERT_GT(engine, 0);
        kill(static_cast<pid_t>(server.process().processId()), signal);
        EXPECT_TRUE(waitUntil([&] { return kill(engine, 0) != 0; })) << signal;
    }
}

TEST(WhisperServerTest, WhatACrashLeftIsRemovedAtTheNextStart) {
    StandInServer server("");
    server.start();
    kill(static_cast<pid_t>(server.process().processId()), SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return !server.process().isRunning(); }));
    EXPECT_TRUE(server.hasEndpointFile());
    EXPECT_TRUE(server.start({QStringLiteral("--engine=whisper"), QStringLiteral("--model=/none")})
                    .empty());
    EXPECT_FALSE(server.hasEndpointFile());
}

TEST(WhisperServerTest, MixedRequestsOfManyClientsGetTheirOwnAnswersAndLeaveNothingOpen) {
    StandInServer server("");
    server.start();
    const auto openFiles = server.openFiles();
    const auto result = ServerLoad(server.port()).run(0, 640);
    EXPECT_EQ(result.answers, 640);
    EXPECT_EQ(result.lost, 0);
    for (const std::string& answer : result.wrong)
        ADD_FAILURE() << answer;
    EXPECT_TRUE(waitUntil([&] { return server.openFiles() <= openFiles; }));
}

TEST(WhisperServerTest, AKilledEngineCostsOnlyTheRequestThatItHeld) {
    StandInServer server("answer 2");
    server.start();
    const pid_t engine = server.engineId();
    const auto result = ServerLoad(server.port(), 160).run(0, 320);
    EXPECT_EQ(result.answers, 320);
    EXPECT_EQ(result.lost, 0);
    for (const std::string& answer : result.wrong)
        ADD_FAILURE() << answer;
    EXPECT_NE(server.engineId(), engine);
}

TEST(WhisperServerTest, BenchTellsTheSpeedOfTheEngine) {
    StandInServer server("speed 100");
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a.wav")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const WavBytes wav = WAV::encode(std::vector<std::int16_t>(5 * 48000), 48000, 1);
    file.write(reinterpret_cast<const char*>(wav.data()), static_cast<qint64>(wav.size()));
    file.close();
    EXPECT_EQ(server.start({QStringLiteral("bench"), file.fileName()}), "model=whisper-active");
    const QByteArray rest = server.process().readAll();
    EXPECT_TRUE(rest.startsWith("audioSeconds=5.00\nelapsedSeconds=0."));
    EXPECT_TRUE(rest.contains("\nrtf="));
    EXPECT_EQ(server.process().exitCode(), 0);
    EXPECT_FALSE(server.hasEndpointFile());
}

TEST(WhisperServerTest, BenchNamesAFileThatItCannotRead) {
    for (const char* file : {"/none.wav", "/tmp", "/dev/null", "/dev/zero"}) {
        StandInServer server("");
        EXPECT_TRUE(server.start({QStringLiteral("bench"), QLatin1String(file)}).empty());
        EXPECT_EQ(server.process().exitCode(), 1) << file;
    }
}

}  // namespace quietlark
