#include "server/raw_http_client.h"

#include <array>
#include <stdexcept>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark {

RawHttpClient::RawHttpClient(int port) : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("cannot connect to the server");
}

RawHttpClient::~RawHttpClient() {
    close(m_socket);
}

bool RawHttpClient::send(std::string_view bytes) const {
    while (!bytes.empty()) {
        const auto count = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void RawHttpClient::finishSending() const {
    shutdown(m_socket, SHUT_WR);
}

bool RawHttpClient::receiveMore() {
    std::array<char, 4096> buffer{};
    const auto count = recv(m_socket, buffer.data(), buffer.size(), 0);
    if (count <= 0) return false;
    m_received.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

RawHttpClient::Answer RawHttpClient::receive() {
    std::size_t headEnd = 0;
    while ((headEnd = m_received.find("\r\n\r\n")) == std::string::npos)
        if (!receiveMore()) return {};
    Answer answer{.status = std::stoi(m_received.substr(9, 3)),
                  .head = m_received.substr(0, headEnd + 2),
                  .body = {}};
    m_received.erase(0, headEnd + 4);
    const auto field = answer.head.find("Content-Length: ");
    const std::size_t length =
        field == std::string::npos ? 0 : std::stoul(answer.head.substr(field + 16));
    while (m_received.size() < length)
        if (!receiveMore()) return {};
    answer.body = m_received.substr(0, length);
    m_received.erase(0, length);
    return answer;
}

RawHttpClient::Answer RawHttpClient::ask(std::string_view request) {
    send(request);
    return receive();
}

bool RawHttpClient::isClosedByServer() {
    return m_received.empty() && !receiveMore();
}

std::string fieldOf(std::string_view name, std::string_view value) {
    return "--B\r\nContent-Disposition: form-data; name=\"" + std::string(name) + "\"\r\n\r\n" +
           std::string(value) + "\r\n";
}

std::string formOf(std::string_view wav, std::string_view fields) {
    std::string form(fields);
    form +=
        "--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
        "Content-Type: audio/wav\r\n\r\n";
    form += wav;
    return form + "\r\n--B--\r\n";
}

std::string postOf(std::string_view path, std::string_view form) {
    return "POST " + std::string(path) +
           " HTTP/1.1\r\nHost: localhost\r\nContent-Type: multipart/form-data; boundary=B\r\n"
           "Content-Length: " +
           std::to_string(form.size()) + "\r\n\r\n" + std::string(form);
}

}  // namespace quietlark
