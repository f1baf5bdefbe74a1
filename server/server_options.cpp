#include "server/server_options.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace quietlark {
namespace {

constexpr const char* usualEndpointFile = "/tmp/quietlark.endpoint";

std::optional<int> portFrom(std::string_view text) {
    int port = -1;
    const auto* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || rest != end || port < 0 || port > 65535) return std::nullopt;
    return port;
}

/// Splits "--name=value" into two arguments.
std::vector<std::string> separated(const std::vector<std::string>& arguments) {
    std::vector<std::string> result;
    for (const std::string& argument : arguments) {
        const auto equals = argument.find('=');
        if (argument.starts_with("--") && equals != std::string::npos) {
            result.push_back(argument.substr(0, equals));
            result.push_back(argument.substr(equals + 1));
        } else {
            result.push_back(argument);
        }
    }
    return result;
}

}  // namespace

tl::expected<ServerOptions, std::string> ServerOptions::parse(
    const std::vector<std::string>& arguments, const std::string& endpointFileVariable) {
    ServerOptions options;
    options.endpointFile = endpointFileVariable.empty() ? usualEndpointFile : endpointFileVariable;
    const auto words = separated(arguments);
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& name = words[i];
        if (name == "--help" || name == "-h") {
            options.action = Action::ShowHelp;
            return options;
        }
        if (name == "--version") {
            options.action = Action::ShowVersion;
            return options;
        }
        if (name != "--host" && name != "--port" && name != "--endpoint-file")
            return tl::unexpected("There is no option " + name + ".");
        if (i + 1 == words.size() || words[i + 1].empty())
            return tl::unexpected("The option " + name + " needs a value.");
        const std::string& value = words[++i];
        if (name == "--host") options.host = value;
        if (name == "--endpoint-file") options.endpointFile = value;
        if (name == "--port") {
            const auto port = portFrom(value);
            if (!port)
                return tl::unexpected(std::string("The port must be a number from 0 to 65535."));
            options.port = *port;
        }
    }
    return options;
}

std::string ServerOptions::help() {
    return "Usage: quietlark-server [OPTION]...\n"
           "Turns recorded speech into text over HTTP, for Quietlark on this computer.\n"
           "\n"
           "  --host HOST           the address to listen on (127.0.0.1)\n"
           "  --port PORT           the port to listen on; 0 takes a free one (0)\n"
           "  --endpoint-file PATH  the file that tells Quietlark where this server is\n"
           "                        ($QUIETLARK_ENDPOINT_FILE, or /tmp/quietlark.endpoint)\n"
           "  --help                shows this text\n"
           "  --version             shows the version\n";
}

}  // namespace quietlark
