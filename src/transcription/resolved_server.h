#pragma once

#include <optional>

#include <QString>
#include <QUrl>

namespace quietlark {

/// Which request a server understands.
enum class ServerFlavor {
    whispercpp,  ///< whisper.cpp's server: uploads to ".../inference"
    openai,      ///< OpenAI-compatible: uploads to ".../audio/transcriptions", with a model's name
};

/// The flavour's name in logs and files: "whispercpp" or "openai".
[[nodiscard]] QString rawValue(ServerFlavor flavor);

/// The flavour of that name; absent for any other text.
[[nodiscard]] std::optional<ServerFlavor> serverFlavor(const QString& rawValue);

/// A server that has answered, and how to talk to it.
struct ResolvedServer {
    ServerFlavor flavor = ServerFlavor::whispercpp;
    QUrl url;                      ///< where uploads go
    std::optional<QString> model;  ///< to be named in the upload; absent when none was chosen

    bool operator==(const ResolvedServer&) const = default;
};

}  // namespace quietlark
