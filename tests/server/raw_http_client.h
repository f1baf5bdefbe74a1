#pragma once

#include <string>
#include <string_view>

namespace quietlark {

/// One connection to a server on 127.0.0.1, byte by byte, for requests that no decent client sends.
class RawHttpClient {
public:
    struct Answer {
        int status = 0;  ///< 0 when the connection ended without an answer
        std::string head;
        std::string body;
    };

    explicit RawHttpClient(int port);
    ~RawHttpClient();
    RawHttpClient(const RawHttpClient&) = delete;
    RawHttpClient& operator=(const RawHttpClient&) = delete;

    /// False when the server has closed the connection.
    bool send(std::string_view bytes) const;

    /// Ends the sending direction.
    void finishSending() const;

    /// The next answer, with as much body as its Content-Length says.
    [[nodiscard]] Answer receive();

    /// send() and receive().
    Answer ask(std::string_view request);

    /// Waits until the server closes the connection; false when it sends something instead.
    [[nodiscard]] bool isClosedByServer();

private:
    bool receiveMore();

    int m_socket;
    std::string m_received;
};

/// A field of a form with the boundary "B".
[[nodiscard]] std::string fieldOf(std::string_view name, std::string_view value);

/// A form with one WAV file after the fields, as the application sends it.
[[nodiscard]] std::string formOf(std::string_view wav, std::string_view fields = "");

/// The request that brings a form.
[[nodiscard]] std::string postOf(std::string_view path, std::string_view form);

}  // namespace quietlark
