#pragma once

#include <memory>
#include <string>

#include <tl/expected.hpp>

#include "platform/log.h"
#include "server/http_api.h"
#include "server/http_connection.h"

namespace quietlark {

/// Serves an HttpApi over HTTP/1.1, several connections at a time, each for as many requests as its
/// client likes. Logs one line per request; never what was said.
class SpeechServer {
public:
    SpeechServer(HttpApi& api, Log& log, ClientPatience patience = {});
    ~SpeechServer();

    /// Takes the address, so that clients can connect; port 0 takes a free one. "::" means all of
    /// this computer's, or those of IPv4 where there are no others. The error is the system's
    /// reason.
    [[nodiscard]] tl::expected<void, std::string> bind(const std::string& host, int port);

    /// The port that bind() took.
    [[nodiscard]] int port() const { return m_port; }

    /// Answers requests until stop(); call it once, after bind(). False when it ended by itself.
    bool run();

    /// Ends run(), when the answers under way have been given. Any thread, also before run().
    void stop();

private:
    class Listener;

    [[nodiscard]] bool take(const std::string& host, int port);

    std::unique_ptr<Listener> m_listener;
    int m_port = 0;
};

}  // namespace quietlark
