#include "server/server_options.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <sstream>
#include <string_view>
#include <utility>

#include <arpa/inet.h>

#include "server/text_forms.h"

namespace quietlark {
namespace {

using Error = tl::unexpected<std::string>;
using Applied = tl::expected<void, std::string>;

constexpr const char* usualEndpointFile = "/tmp/quietlark.endpoint";
constexpr std::string_view settingPrefix = "QUIETLARK_SERVER_";
constexpr std::size_t longestServiceName = 63;  // RFC 6763, section 4.1.1
constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;

/// A whole number from `lowest` to `highest`, or a sentence about `what`.
template <typename Number>
Applied setNumber(Number& target, const std::string& text, std::uint64_t lowest,
                  std::uint64_t highest, std::string_view what) {
    std::uint64_t number = 0;
    const auto* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < lowest || number > highest)
        return Error(std::string(what) + " must be a number from " + std::to_string(lowest) +
                     " to " + std::to_string(highest) + ".");
    target = Number(number);
    return {};
}

Applied setEngine(ServerOptions& options, const std::string& value) {
    using Engine = ServerOptions::Engine;
    if (value == "auto") {
        options.engine = Engine::Automatic;
    } else if (value == "whisper") {
        options.engine = Engine::Whisper;
    } else if (value == "pocketsphinx") {
        options.engine = Engine::PocketSphinx;
    } else {
        return Error("The engine must be auto, whisper or pocketsphinx.");
    }
    return {};
}

Applied setShare(ServerOptions& options, const std::string& value) {
    if (value == "yes" || value == "no") {
        options.audience = value == "yes" ? Audience::Network : Audience::ThisComputer;
        return {};
    }
    return Error("Sharing must be yes or no.");
}

Applied setName(ServerOptions& options, const std::string& value) {
    if (value.size() > longestServiceName) return Error("The name is longer than 63 bytes.");
    options.name = value;
    return {};
}

/// Names with commas between them, as a client's requests bring them.
Applied setKnownAs(ServerOptions& options, const std::string& value) {
    std::istringstream names(value);
    options.knownAs.clear();
    for (std::string written; std::getline(names, written, ',');) {
        std::string name = hostNameForm(written);
        const bool isName = !name.empty() && std::ranges::all_of(name, [](unsigned char character) {
            return std::isalnum(character) != 0 ||
                   std::string_view("-_.").find(static_cast<char>(character)) !=
                       std::string_view::npos;
        });
        if (!isName)
            return Error("A name by which this computer is known is like desk.example.com.");
        options.knownAs.push_back(std::move(name));
    }
    return {};
}

Applied setBodyLimit(ServerOptions& options, const std::string& value) {
    std::uint64_t mebibytes = 0;
    auto applied = setNumber(mebibytes, value, 1, 1024, "The largest upload in MiB");
    options.limits.bodyBytes = mebibytes * mebibyte;
    options.limits.totalBytes = std::max(options.limits.totalBytes, options.limits.bodyBytes);
    return applied;
}

struct Option {
    std::string_view name;
    Applied (*apply)(ServerOptions& options, const std::string& value);
};

template <std::string ServerOptions::*field>
Applied setText(ServerOptions& options, const std::string& value) {
    options.*field = value;
    return {};
}

/// All that take a value; --share, as an argument, may go without.
constexpr std::array<Option, 14> knownOptions = {{
    {"--engine", &setEngine},
    {"--model", &setText<&ServerOptions::modelFile>},
    {"--whisper-server", &setText<&ServerOptions::whisperServer>},
    {"--host", &setText<&ServerOptions::host>},
    {"--port",
     [](ServerOptions& options, const std::string& value) {
         int port = 0;
         auto applied = setNumber(port, value, 0, 65535, "The port");
         options.port = port;
         return applied;
     }},
    {"--share", &setShare},
    {"--name", &setName},
    {"--known-as", &setKnownAs},
    {"--language", &setText<&ServerOptions::language>},
    {"--endpoint-file", &setText<&ServerOptions::endpointFile>},
    {"--max-upload", &setBodyLimit},
    {"--max-audio",
     [](ServerOptions& options, const std::string& value) {
         return setNumber(options.limits.audio, value, 1, 86400,
                          "The longest recording in seconds");
     }},
    {"--max-time",
     [](ServerOptions& options, const std::string& value) {
         return setNumber(options.limits.time, value, 1, 86400, "The longest time in seconds");
     }},
    {"--max-waiting",
     [](ServerOptions& options, const std::string& value) {
         return setNumber(options.limits.waiting, value, 0, 1000, "The number of waiting uploads");
     }},
}};

const Option* optionOf(std::string_view name) {
    const auto found = std::ranges::find(knownOptions, name, &Option::name);
    return found == knownOptions.end() ? nullptr : &*found;
}

/// QUIETLARK_SERVER_MAX_AUDIO for --max-audio. The application knows the endpoint file's too.
std::string settingOf(std::string_view option) {
    if (option == "--endpoint-file") return "QUIETLARK_ENDPOINT_FILE";
    std::string name = std::string(settingPrefix) + std::string(option.substr(2));
    std::ranges::transform(name, name.begin(), [](unsigned char character) {
        return character == '-' ? '_' : static_cast<char>(std::toupper(character));
    });
    return name;
}

/// Splits "--name=value" into two arguments, but for --share, whose value is never an argument.
std::vector<std::string> separated(const std::vector<std::string>& arguments) {
    std::vector<std::string> result;
    for (const std::string& argument : arguments) {
        const auto equals = argument.find('=');
        const bool isShare = argument.starts_with("--share=");
        if (argument.starts_with("--") && equals != std::string::npos && !isShare) {
            result.push_back(argument.substr(0, equals));
            result.push_back(argument.substr(equals + 1));
        } else {
            result.push_back(argument);
        }
    }
    return result;
}

bool isLoopback(const std::string& host) {
    in_addr address{};
    const bool isIpv4 = inet_pton(AF_INET, host.c_str(), &address) == 1;
    return host == "localhost" || host == "::1" || (isIpv4 && host.starts_with("127."));
}

Applied refuseStrangeSettings(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const bool isKnown = std::ranges::any_of(
            knownOptions, [&](const Option& option) { return settingOf(option.name) == name; });
        if (name.starts_with(settingPrefix) && !isKnown)
            return Error("There is no setting " + name + ".");
    }
    return {};
}

Applied applySettings(ServerOptions& options, const ServerOptions::Settings& settings) {
    for (const Option& option : knownOptions) {
        const std::string setting = settingOf(option.name);
        const auto value = settings(setting);
        if (!value || value->empty()) continue;
        const auto applied = option.apply(options, *value);
        if (!applied) return Error(setting + ": " + applied.error());
    }
    return {};
}

/// Applies the argument at `words[position]`, and moves on to its last word.
Applied applyArgument(ServerOptions& options, const std::vector<std::string>& words,
                      std::size_t& position) {
    const std::string& name = words[position];
    const bool isBench = options.action == ServerOptions::Action::Bench;
    if (name == "bench" && !isBench) {
        options.action = ServerOptions::Action::Bench;
        return {};
    }
    if (isBench && options.benchFile.empty() && !name.starts_with('-')) {
        options.benchFile = name;
        return {};
    }
    if (name == "--share") return setShare(options, "yes");
    if (name.starts_with("--share=")) return setShare(options, name.substr(name.find('=') + 1));
    const Option* const option = optionOf(name);
    const bool followsShare = position > 0 && words[position - 1] == "--share";
    if (followsShare && (name == "yes" || name == "no"))
        return Error("Write --share=" + name + ".");
    if (!option) return Error("There is no option " + name + ".");
    if (position + 1 == words.size() || words[position + 1].empty())
        return Error("The option " + name + " needs a value.");
    return option->apply(options, words[++position]);
}

Applied complete(ServerOptions& options) {
    if (options.action == ServerOptions::Action::Bench && options.benchFile.empty())
        return Error("bench needs a WAV file.");
    const bool isShared = options.audience == Audience::Network;
    if (options.host.empty()) options.host = isShared ? "::" : "127.0.0.1";
    if (!isShared && !isLoopback(options.host))
        return Error("Listening on " + options.host + " needs --share.");
    return {};
}

}  // namespace

tl::expected<ServerOptions, std::string> ServerOptions::parse(
    const std::vector<std::string>& arguments, const Settings& settings,
    const std::vector<std::string>& settingNames) {
    ServerOptions options;
    options.endpointFile = usualEndpointFile;
    const auto words = separated(arguments);
    for (const std::string& word : words) {
        const bool isHelp = word == "--help" || word == "-h";
        if (!isHelp && word != "--version") continue;
        options.action = isHelp ? Action::ShowHelp : Action::ShowVersion;
        return options;
    }
    Applied applied = refuseStrangeSettings(settingNames);
    if (applied) applied = applySettings(options, settings);
    for (std::size_t i = 0; applied && i < words.size(); ++i)
        applied = applyArgument(options, words, i);
    if (applied) applied = complete(options);
    if (!applied) return Error(applied.error());
    return options;
}

std::string ServerOptions::help() {
    return R"(Usage: quietlark-server [OPTION]...
       quietlark-server bench FILE.wav [OPTION]...
Turns recorded speech into text over HTTP, for Quietlark on this computer and, if you like, on
others. With bench, says how fast it transcribes a recording and ends.

  --engine ENGINE         whisper, pocketsphinx or auto: the first that works (auto)
  --model FILE            the model for whisper.cpp
                          ($XDG_DATA_HOME/Quietlark/models/active.bin)
  --whisper-server PATH   the server of whisper.cpp (whisper-server, as found in $PATH or else in
                          ~/.local/bin)
  --share                 serves other computers too, and tells the local network about it;
                          --share=no does not, whatever the environment says
  --name NAME             the name that the network sees (the computer's)
  --known-as NAMES        with --share, names that clients may use for this computer beside its
                          own, addresses, single words and names under .local, .lan and the like:
                          such as desk.fritz.box,desk.example.com
  --host HOST             the address to listen on (127.0.0.1; :: with --share)
  --port PORT             the port to listen on; 0 takes a free one (0; 8178 with --share)
  --language LANGUAGE     what is spoken when a request does not say, such as de or german
                          (the engine decides)
  --max-upload MIB        the largest upload (64)
  --max-audio SECONDS     the longest recording (3600)
  --max-time SECONDS      the longest time for one recording (600)
  --max-waiting NUMBER    how many uploads may wait for their turn (64)
  --endpoint-file PATH    the file that tells Quietlark where this server is
                          ($QUIETLARK_ENDPOINT_FILE, or /tmp/quietlark.endpoint)
  -h, --help              shows this text
  --version               shows the version

Each may also be set in the environment, as QUIETLARK_SERVER_MAX_AUDIO=60 for --max-audio 60 or
QUIETLARK_SERVER_SHARE=yes; the service reads such lines from ~/.config/Quietlark/server.conf.
)";
}

}  // namespace quietlark
