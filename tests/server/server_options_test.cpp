#include "server/server_options.h"

#include <map>

#include <gtest/gtest.h>

namespace quietlark {
namespace {

using Settings = std::map<std::string, std::string>;

tl::expected<ServerOptions, std::string> parse(const std::vector<std::string>& arguments,
                                               const Settings& settings) {
    return ServerOptions::parse(arguments, [&](const std::string& name) {
        const auto found = settings.find(name);
        return found == settings.end() ? std::nullopt : std::optional(found->second);
    });
}

ServerOptions parsed(const std::vector<std::string>& arguments, const Settings& settings = {}) {
    return parse(arguments, settings).value();
}

std::string refused(const std::vector<std::string>& arguments, const Settings& settings = {}) {
    const auto options = parse(arguments, settings);
    return options ? "" : options.error();
}

}  // namespace

TEST(ServerOptionsTest, NoArgumentsServeThisComputerOnAFreePort) {
    const auto options = parsed({});
    EXPECT_EQ(options.action, ServerOptions::Action::Serve);
    EXPECT_EQ(options.host, "127.0.0.1");
    EXPECT_FALSE(options.port);
    EXPECT_EQ(options.audience, Audience::ThisComputer);
    EXPECT_EQ(options.endpointFile, "/tmp/quietlark.endpoint");
}

TEST(ServerOptionsTest, ValuesFollowTheirOptionOrAnEqualsSign) {
    const auto options =
        parsed({"--host", "127.0.0.2", "--port=8178", "--endpoint-file", "/run/e"});
    EXPECT_EQ(options.host, "127.0.0.2");
    EXPECT_EQ(options.port, 8178);
    EXPECT_EQ(options.endpointFile, "/run/e");
}

TEST(ServerOptionsTest, ArgumentsBeatSettings) {
    const Settings settings{{"QUIETLARK_ENDPOINT_FILE", "/run/setting"},
                            {"QUIETLARK_SERVER_PORT", "81"}};
    EXPECT_EQ(parsed({}, settings).endpointFile, "/run/setting");
    EXPECT_EQ(parsed({"--endpoint-file=/run/e"}, settings).endpointFile, "/run/e");
    EXPECT_EQ(parsed({}, settings).port, 81);
    EXPECT_EQ(parsed({"--port", "82"}, settings).port, 82);
}

TEST(ServerOptionsTest, NamesOfThisComputerHaveCommasBetweenThem) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(parsed({"--known-as", "Desk.Fritz.Box,desk_1.example.com"}).knownAs,
              (Names{"desk.fritz.box", "desk_1.example.com"}));
    EXPECT_EQ(parsed({}, {{"QUIETLARK_SERVER_KNOWN_AS", "a.b"}}).knownAs, Names{"a.b"});
    EXPECT_EQ(parsed({"--known-as=c.d"}, {{"QUIETLARK_SERVER_KNOWN_AS", "a.b"}}).knownAs,
              Names{"c.d"});
    EXPECT_EQ(parsed({"--known-as", "desk.example.com.,desk"}).knownAs,
              (Names{"desk.example.com", "desk"}));
    for (const char* value : {"http://desk.example.com", "desk:8178", "a,,b", "a, b", "."})
        EXPECT_EQ(refused({"--known-as", value}),
                  "A name by which this computer is known is like desk.example.com.")
            << value;
}

TEST(ServerOptionsTest, EveryOptionIsASettingToo) {
    const auto options = parsed({}, {{"QUIETLARK_SERVER_ENGINE", "whisper"},
                                     {"QUIETLARK_SERVER_MODEL", "/m.bin"},
                                     {"QUIETLARK_SERVER_WHISPER_SERVER", "/opt/w"},
                                     {"QUIETLARK_SERVER_SHARE", "yes"},
                                     {"QUIETLARK_SERVER_NAME", "Attic"},
                                     {"QUIETLARK_SERVER_HOST", "192.168.1.2"},
                                     {"QUIETLARK_SERVER_LANGUAGE", "de"},
                                     {"QUIETLARK_SERVER_MAX_UPLOAD", "2"},
                                     {"QUIETLARK_SERVER_MAX_AUDIO", "60"},
                                     {"QUIETLARK_SERVER_MAX_TIME", "30"},
                                     {"QUIETLARK_SERVER_MAX_WAITING", "3"}});
    EXPECT_EQ(options.engine, ServerOptions::Engine::Whisper);
    EXPECT_EQ(options.modelFile + options.whisperServer, "/m.bin/opt/w");
    EXPECT_EQ(options.audience, Audience::Network);
    EXPECT_EQ(options.name + options.host + options.language, "Attic192.168.1.2de");
    EXPECT_EQ(options.limits.bodyBytes, std::uint64_t{2} << 20U);
    EXPECT_EQ(options.limits.audio.count(), 60);
    EXPECT_EQ(options.limits.time.count(), 30);
    EXPECT_EQ(options.limits.waiting, 3U);
}

TEST(ServerOptionsTest, AnEmptySettingIsNone) {
    EXPECT_EQ(parsed({}, {{"QUIETLARK_SERVER_ENGINE", ""}}).engine,
              ServerOptions::Engine::Automatic);
}

TEST(ServerOptionsTest, AWrongSettingIsNamed) {
    EXPECT_EQ(refused({}, {{"QUIETLARK_SERVER_SHARE", "perhaps"}}),
              "QUIETLARK_SERVER_SHARE: Sharing must be yes or no.");
}

TEST(ServerOptionsTest, ASettingThatMeansNothingIsNamed) {
    const auto none = [](const std::string&) { return std::nullopt; };
    EXPECT_TRUE(ServerOptions::parse({}, none, {"PATH", "QUIETLARK_SERVER_MAX_AUDIO"}));
    EXPECT_EQ(ServerOptions::parse({}, none, {"QUIETLARK_SERVER_MAXAUDIO"}).error(),
              "There is no setting QUIETLARK_SERVER_MAXAUDIO.");
    EXPECT_TRUE(ServerOptions::parse({"--help"}, none, {"QUIETLARK_SERVER_MAXAUDIO"}));
}

TEST(ServerOptionsTest, SharingMayBeTakenBackOnTheCommandLine) {
    const Settings shared{{"QUIETLARK_SERVER_SHARE", "yes"}};
    EXPECT_EQ(parsed({"--share=no"}, shared).audience, Audience::ThisComputer);
    EXPECT_EQ(parsed({"--share=yes"}).audience, Audience::Network);
    EXPECT_EQ(refused({"--share=maybe"}), "Sharing must be yes or no.");
    EXPECT_EQ(refused({"--share", "no"}), "Write --share=no.");
    EXPECT_EQ(refused({"no"}), "There is no option no.");
}

TEST(ServerOptionsTest, SharingListensOnEveryAddress) {
    EXPECT_EQ(parsed({"--share"}).host, "::");
    EXPECT_EQ(parsed({"--share", "--host", "127.0.0.1"}).host, "127.0.0.1");
}

TEST(ServerOptionsTest, OtherComputersAreServedOnlyWhenSharing) {
    EXPECT_EQ(refused({"--host", "0.0.0.0"}), "Listening on 0.0.0.0 needs --share.");
    EXPECT_EQ(refused({"--host", "127.example.com"}),
              "Listening on 127.example.com needs --share.");
    for (const char* host : {"127.0.0.5", "localhost", "::1"})
        EXPECT_EQ(parsed({"--host", host}).host, host);
}

TEST(ServerOptionsTest, BenchTakesAFile) {
    const auto options = parsed({"bench", "--engine", "pocketsphinx", "a.wav"});
    EXPECT_EQ(options.action, ServerOptions::Action::Bench);
    EXPECT_EQ(options.benchFile, "a.wav");
    EXPECT_EQ(parsed({"--engine", "pocketsphinx", "bench", "a.wav"}).benchFile, "a.wav");
    EXPECT_EQ(parsed({"bench", "bench"}).benchFile, "bench");
    EXPECT_EQ(refused({"bench"}), "bench needs a WAV file.");
    EXPECT_EQ(refused({"bench", "a.wav", "b.wav"}), "There is no option b.wav.");
}

TEST(ServerOptionsTest, HelpAndVersionAreActions) {
    EXPECT_EQ(parsed({"--help"}).action, ServerOptions::Action::ShowHelp);
    EXPECT_EQ(parsed({"--version"}).action, ServerOptions::Action::ShowVersion);
}

TEST(ServerOptionsTest, HelpNamesEveryOption) {
    for (const char* option : {"--engine", "--model", "--whisper-server", "--share", "--name",
                               "--known-as", "--host", "--port", "--language", "--max-upload",
                               "--max-audio", "--max-time", "--max-waiting", "--endpoint-file"})
        EXPECT_NE(ServerOptions::help().find(std::string("  ") + option + " "), std::string::npos)
            << option;
}

TEST(ServerOptionsTest, WrongUsageIsNamed) {
    EXPECT_EQ(refused({"--colour"}), "There is no option --colour.");
    EXPECT_EQ(refused({"file.wav"}), "There is no option file.wav.");
    EXPECT_EQ(refused({"--host"}), "The option --host needs a value.");
    EXPECT_EQ(refused({"--host="}), "The option --host needs a value.");
    EXPECT_EQ(refused({"--engine=tea"}), "The engine must be auto, whisper or pocketsphinx.");
    EXPECT_EQ(refused({"--max-waiting=1001"}),
              "The number of waiting uploads must be a number from 0 to 1000.");
    EXPECT_EQ(refused({"--max-audio=0"}),
              "The longest recording in seconds must be a number from 1 to 86400.");
    EXPECT_EQ(refused({"--name", std::string(64, 'n')}), "The name is longer than 63 bytes.");
    for (const char* port : {"65536", "-1", "80x", "x"})
        EXPECT_EQ(refused({"--port", port}), "The port must be a number from 0 to 65535.") << port;
}

}  // namespace quietlark
