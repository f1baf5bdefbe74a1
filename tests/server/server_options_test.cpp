#include "server/server_options.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

ServerOptions parsed(const std::vector<std::string>& arguments, const std::string& variable = "") {
    return ServerOptions::parse(arguments, variable).value();
}

std::string refused(const std::vector<std::string>& arguments) {
    const auto options = ServerOptions::parse(arguments, "");
    return options ? "" : options.error();
}

}  // namespace

TEST(ServerOptionsTest, NoArgumentsServeThisComputerOnAFreePort) {
    const auto options = parsed({});
    EXPECT_EQ(options.action, ServerOptions::Action::Serve);
    EXPECT_EQ(options.host, "127.0.0.1");
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.endpointFile, "/tmp/quietlark.endpoint");
}

TEST(ServerOptionsTest, ValuesFollowTheirOptionOrAnEqualsSign) {
    const auto options = parsed({"--host", "0.0.0.0", "--port=8178", "--endpoint-file", "/run/e"});
    EXPECT_EQ(options.host, "0.0.0.0");
    EXPECT_EQ(options.port, 8178);
    EXPECT_EQ(options.endpointFile, "/run/e");
}

TEST(ServerOptionsTest, TheEndpointFileArgumentBeatsTheVariable) {
    EXPECT_EQ(parsed({}, "/run/variable").endpointFile, "/run/variable");
    EXPECT_EQ(parsed({"--endpoint-file=/run/e"}, "/run/variable").endpointFile, "/run/e");
}

TEST(ServerOptionsTest, HelpAndVersionAreActions) {
    EXPECT_EQ(parsed({"--help"}).action, ServerOptions::Action::ShowHelp);
    EXPECT_EQ(parsed({"--version"}).action, ServerOptions::Action::ShowVersion);
}

TEST(ServerOptionsTest, WrongUsageIsNamed) {
    EXPECT_EQ(refused({"--colour"}), "There is no option --colour.");
    EXPECT_EQ(refused({"file.wav"}), "There is no option file.wav.");
    EXPECT_EQ(refused({"--host"}), "The option --host needs a value.");
    EXPECT_EQ(refused({"--host="}), "The option --host needs a value.");
    for (const char* port : {"65536", "-1", "80x", "x"})
        EXPECT_EQ(refused({"--port", port}), "The port must be a number from 0 to 65535.") << port;
}

}  // namespace quietlark
