#include "transcription/resolved_server.h"

namespace quietlark {

namespace {

constexpr QLatin1String whispercppName("whispercpp");
constexpr QLatin1String openaiName("openai");

}  // namespace

QString rawValue(ServerFlavor flavor) {
    return flavor == ServerFlavor::whispercpp ? whispercppName : openaiName;
}

std::optional<ServerFlavor> serverFlavor(const QString& rawValue) {
    if (rawValue == whispercppName) return ServerFlavor::whispercpp;
    if (rawValue == openaiName) return ServerFlavor::openai;
    return std::nullopt;
}

}  // namespace quietlark
