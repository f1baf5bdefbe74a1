#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include <QString>

#include "platform/cancellable.h"
#include "transcription/resolved_server.h"

namespace quietlark {

class HttpClient;

/// Finds out by asking what kind of server answers at an address. Main thread.
class ServerResolver {
public:
    using ResolvedHandler = std::function<void(std::optional<ResolvedServer>)>;

    /// Longest wait for the answer to one question that a user should have to sit through.
    static constexpr std::chrono::milliseconds usualTimeout{3000};

    explicit ServerResolver(HttpClient& http);

    /// Probes `address`, a base address or a full upload address, with one request after another,
    /// each of which may stay without a byte for `timeout`. `onResolved` runs once, never before
    /// the call returns; with nothing when no known kind of server answered, for whatever reason.
    ///
    /// An address counts as valid when it parses strictly as a URL with a scheme and a host.
    [[nodiscard]] Cancellable resolveServer(const QString& address,
                                            std::chrono::milliseconds timeout,
                                            ResolvedHandler onResolved);

private:
    HttpClient& m_http;
};

}  // namespace quietlark
