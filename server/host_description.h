#pragma once

#include <string>

namespace quietlark {

/// "host:port", for the host that clients on this computer can use when the server listens on
/// `host`.
[[nodiscard]] std::string localAddress(const std::string& host, int port);

/// This computer's name as the system has it, with a domain or without.
[[nodiscard]] std::string fullComputerName();

/// The same without a domain.
[[nodiscard]] std::string computerName();

/// What the processor calls itself, such as "AMD Ryzen 7 5800X 8-Core Processor", from a file like
/// /proc/cpuinfo; empty where that does not say.
[[nodiscard]] std::string processorName(const std::string& cpuInfoFile = "/proc/cpuinfo");

}  // namespace quietlark
