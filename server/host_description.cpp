#include "server/host_description.h"

#include <array>
#include <fstream>

#include <unistd.h>

namespace quietlark {
namespace {

constexpr std::size_t longestProcessorName = 200;

}  // namespace

std::string localAddress(const std::string& host, int port) {
    std::string reachable = host;
    if (host == "0.0.0.0" || host == "::") reachable = "127.0.0.1";
    const bool isIpv6 = reachable.find(':') != std::string::npos;
    return (isIpv6 ? "[" + reachable + "]" : reachable) + ":" + std::to_string(port);
}

std::string fullComputerName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "computer";
}

std::string computerName() {
    const std::string whole = fullComputerName();
    const std::string first = whole.substr(0, whole.find('.'));
    return first.empty() ? "computer" : first.substr(0, 63);
}

std::string processorName(const std::string& cpuInfoFile) {
    std::ifstream file(cpuInfoFile);
    std::string line;
    while (std::getline(file, line)) {
        const auto colon = line.find(':');
        if (!line.starts_with("model name") || colon == std::string::npos) continue;
        const auto begin = line.find_first_not_of(" \t", colon + 1);
        return begin == std::string::npos ? "" : line.substr(begin, longestProcessorName);
    }
    return "";
}

}  // namespace quietlark
