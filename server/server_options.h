#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "server/browser_guard.h"
#include "server/server_limits.h"

namespace quietlark {

/// What the command line and the settings ask for.
struct ServerOptions {
    enum class Action { Serve, Bench, ShowHelp, ShowVersion };
    enum class Engine { Automatic, Whisper, PocketSphinx };

    /// Looks a setting up by its name, such as "QUIETLARK_SERVER_PORT".
    using Settings = std::function<std::optional<std::string>(const std::string& name)>;

    Action action = Action::Serve;
    std::string benchFile;
    Engine engine = Engine::Automatic;
    std::string modelFile;                         ///< of whisper.cpp
    std::string whisperServer = "whisper-server";  ///< or its path
    std::string host;                              ///< never empty after parse()
    std::optional<int> port;                       ///< 0 takes a free one; absent leaves the choice
    Audience audience = Audience::ThisComputer;
    std::vector<std::string> knownAs;  ///< further names of this computer, in lower case
    std::string name;      ///< under which the network sees this server; empty for the computer's
    std::string language;  ///< for requests that name none
    std::string endpointFile;
    ServerLimits limits;

    /// `arguments` without the program's name. Every option that takes a value may also be a
    /// setting: QUIETLARK_SERVER_MAX_AUDIO is --max-audio. Arguments beat settings, and an empty
    /// setting is none. `settingNames` are those of all settings that there are, so that one that
    /// means nothing is not passed over. The error is a sentence for the user.
    [[nodiscard]] static tl::expected<ServerOptions, std::string> parse(
        const std::vector<std::string>& arguments, const Settings& settings,
        const std::vector<std::string>& settingNames = {});

    /// The text of --help.
    [[nodiscard]] static std::string help();
};

}  // namespace quietlark
