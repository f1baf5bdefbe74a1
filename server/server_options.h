#pragma once

#include <string>
#include <vector>

#include <tl/expected.hpp>

namespace quietlark {

/// What the command line asks for.
struct ServerOptions {
    enum class Action { Serve, ShowHelp, ShowVersion };

    Action action = Action::Serve;
    std::string host = "127.0.0.1";
    int port = 0;  ///< 0 takes a free one
    std::string endpointFile;

    /// `arguments` without the program's name. The endpoint file is the one that the arguments
    /// name, else `endpointFileVariable`, else the usual one. The error is a sentence for the user.
    [[nodiscard]] static tl::expected<ServerOptions, std::string> parse(
        const std::vector<std::string>& arguments, const std::string& endpointFileVariable);

    /// The text of --help.
    [[nodiscard]] static std::string help();
};

}  // namespace quietlark
