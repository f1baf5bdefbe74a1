#include "server/speech_server.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include <httplib.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "server/admission.h"
#include "server/connection_pool.h"
#include "server/text_forms.h"

namespace quietlark {
namespace {

/// Beside the uploads that are let in: for those that are told to come back, and other questions.
constexpr std::size_t otherConnections = 32;
constexpr int waitingConnections = 128;
constexpr std::size_t requestsPerConnection = 1000;
constexpr std::size_t longestLoggedPath = 128;

/// What is known of the request that a thread answers beside what the library passes on.
struct Visit {
    const HttpConnection* connection = nullptr;
    bool hasRoom = true;
};
thread_local Visit visit;

HttpHead headOf(const httplib::Request& request) {
    HttpHead head{.method = request.method,
                  .path = request.path,
                  .contentType = request.get_header_value("Content-Type"),
                  .contentEncoding = request.get_header_value("Content-Encoding"),
                  .transferEncoding = request.get_header_value("Transfer-Encoding"),
                  .contentLength = std::nullopt,
                  .host = request.get_header_value("Host"),
                  .origin = request.get_header_value("Origin"),
                  .fetchSite = request.get_header_value("Sec-Fetch-Site"),
                  .fetchMode = request.get_header_value("Sec-Fetch-Mode")};
    if (request.has_header("Content-Length"))
        head.contentLength = request.get_header_value<std::uint64_t>("Content-Length");
    return head;
}

HttpRequest contentOf(const httplib::Request& request) {
    HttpRequest content{.method = request.method, .path = request.path, .form = {}};
    content.isAbandoned = [connection = visit.connection] { return connection->hasClientLeft(); };
    for (const auto& [name, field] : request.files)
        content.form.emplace(name, field.content);
    return content;
}

void fill(httplib::Response& out, const HttpResponse& response) {
    out.status = response.status;
    out.set_content(response.body, response.contentType);
    if (!response.allowedMethod.empty()) out.set_header("Allow", response.allowedMethod);
    if (response.retryAfterSeconds > 0)
        out.set_header("Retry-After", std::to_string(response.retryAfterSeconds));
    // OpenAI's clients would try again whatever the reason.
    if (!response.isWorthRetrying) out.set_header("x-should-retry", "false");
    out.set_header("X-Content-Type-Options", "nosniff");
    out.set_header("Cross-Origin-Resource-Policy", "same-origin");
}

/// What is said of requests that the library itself turns down.
std::string_view messageFor(int status) {
    switch (status) {
        case 413:
            return "The upload is too large.";
        case 414:
            return "The address is too long.";
        case 416:
            return "The requested range makes no sense.";
        case 500:
            return "The server has a fault.";
        default:
            return "The request cannot be understood.";
    }
}

}  // namespace

/// cpp-httplib's server with connections, limits and answers of our own.
class SpeechServer::Listener final : public httplib::Server {
public:
    Listener(HttpApi& api, Log& log, ClientPatience patience);
    ~Listener() override;
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// Lets more clients wait than the library does.
    void lengthenQueue() const { ::listen(m_socket, waitingConnections); }
    void requestStop();
    /// Whether it was asked to stop; there is nothing to stop from here on.
    [[nodiscard]] bool end() { return m_isStopping.exchange(true); }

private:
    bool process_and_close_socket(socket_t socket) override;
    void serveRequests(HttpConnection& connection);
    /// Answers how many bytes of upload were let in.
    std::uint64_t prepare(HttpConnection& connection, httplib::Request& request);
    [[nodiscard]] std::optional<HttpResponse> refusal(const httplib::Request& request) const;
    bool refuse(const httplib::Request& request, httplib::Response& out) const;
    void answer(const httplib::Request& request, httplib::Response& out);
    void describeError(const httplib::Request& request, httplib::Response& out);
    void logRequest(const httplib::Request& request, const httplib::Response& out,
                    const std::string& times) const;

    HttpApi& m_api;
    Log& m_log;
    const ClientPatience m_patience;
    Admission m_admission;
    const int m_stopEvent = eventfd(0, EFD_CLOEXEC);
    const int m_crowdedEvent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);
    socket_t m_socket = INVALID_SOCKET;
    std::atomic<bool> m_isStopping = false;
};

SpeechServer::Listener::Listener(HttpApi& api, Log& log, ClientPatience patience)
    : m_api(api), m_log(log), m_patience(patience), m_admission(api.limits()) {
    // The library's own choice would let a second server share the port unnoticed.
    set_socket_options([this](socket_t socket) {
        const int on = 1;
        const int off = 0;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        // The address "::" serves both kinds; this fails, as it may, on a socket of the older one.
        setsockopt(socket, IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
        m_socket = socket;
    });
    set_tcp_nodelay(true);
    set_keep_alive_timeout(
        std::chrono::duration_cast<std::chrono::seconds>(m_patience.idle).count());
    set_keep_alive_max_count(requestsPerConnection);
    set_payload_max_length(api.limits().bodyBytes);
    // Each connection keeps a thread, mostly asleep.
    new_task_queue = [this] {
        const std::size_t uploads = m_api.limits().waiting + 1;
        return new ConnectionPool(uploads + otherConnections, m_crowdedEvent);
    };

    set_expect_100_continue_handler(
        [this](const auto& request, auto& out) { return refuse(request, out) ? out.status : 100; });
    set_pre_routing_handler([this](const auto& request, auto& out) {
        return refuse(request, out) ? HandlerResponse::Handled : HandlerResponse::Unhandled;
    });
    const auto handler = [this](const auto& request, auto& out) { answer(request, out); };
    Get(".*", handler);
    Post(".*", handler);
    set_exception_handler(
        [](const auto&, httplib::Response& out, const std::exception_ptr&) { out.status = 500; });
    set_error_handler(HandlerWithResponse([this](const auto& request, auto& out) {
        describeError(request, out);
        return HandlerResponse::Handled;
    }));
}

SpeechServer::Listener::~Listener() {
    close(m_stopEvent);
    close(m_crowdedEvent);
}

void SpeechServer::Listener::requestStop() {
    if (m_isStopping.exchange(true)) return;
    eventfd_write(m_stopEvent, 1);
    // Ends the wait for the next connection, or the next such wait if there is none now.
    shutdown(m_socket, SHUT_RDWR);
}

bool SpeechServer::Listener::process_and_close_socket(socket_t socket) {
    HttpConnection connection(socket, {m_stopEvent, m_crowdedEvent}, m_patience);
    serveRequests(connection);
    return true;
}

void SpeechServer::Listener::serveRequests(HttpConnection& connection) {
    for (auto left = requestsPerConnection; left > 0 && connection.waitForRequest(); --left) {
        bool isClosed = false;
        std::uint64_t admitted = 0;
        const bool hasAnswered = process_request(
            connection, left == 1 || m_isStopping, isClosed,
            [&](httplib::Request& request) { admitted = prepare(connection, request); });
        if (admitted > 0) m_admission.leave(admitted);
        if (!hasAnswered || isClosed || m_isStopping || !connection.isRequestComplete()) break;
    }
}

std::uint64_t SpeechServer::Listener::prepare(HttpConnection& connection,
                                              httplib::Request& request) {
    const HttpHead head = headOf(request);
    const bool isChunked = !head.transferEncoding.empty();
    // A chunked body ends where it says. The library would follow it to wherever that is.
    const std::uint64_t bodyBytes =
        isChunked ? m_api.limits().bodyBytes : head.contentLength.value_or(0);
    connection.expectBody(bodyBytes);
    // Answers are short: whole and uncompressed is quickest.
    request.headers.erase("Accept-Encoding");
    request.ranges.clear();
    const bool isWelcome = !m_api.refusal(head);
    const bool isAdmitted = isWelcome && bodyBytes > 0 && m_admission.enter(bodyBytes);
    visit = {.connection = &connection, .hasRoom = !isWelcome || bodyBytes == 0 || isAdmitted};
    // A refused body is left unread, and where a chunked one ends only the library knows: no other
    // request can follow them.
    if (isChunked || (bodyBytes > 0 && !isAdmitted)) {
        request.headers.erase("Connection");
        request.set_header("Connection", "close");
    }
    return isAdmitted ? bodyBytes : 0;
}

std::optional<HttpResponse> SpeechServer::Listener::refusal(const httplib::Request& request) const {
    if (!visit.hasRoom) return unavailableResponse("Too many recordings are waiting already.");
    return m_api.refusal(headOf(request));
}

bool SpeechServer::Listener::refuse(const httplib::Request& request, httplib::Response& out) const {
    const auto response = refusal(request);
    if (!response) return false;
    fill(out, *response);
    logRequest(request, out, "");
    return true;
}

void SpeechServer::Listener::answer(const httplib::Request& request, httplib::Response& out) {
    const auto start = std::chrono::steady_clock::now();
    const HttpResponse response = m_api.answer(contentOf(request));
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    fill(out, response);
    logRequest(request, out,
               " audio=" + decimals(response.audioSeconds) +
                   "s elapsed=" + decimals(elapsed.count()) + "s");
}

void SpeechServer::Listener::describeError(const httplib::Request& request,
                                           httplib::Response& out) {
    if (!out.body.empty()) return;
    // What is left of such a request is not read, so that no other can follow it.
    out.set_header("Connection", "close");
    fill(out, errorResponse(out.status, {.message = messageFor(out.status)}));
    logRequest(request, out, "");
}

void SpeechServer::Listener::logRequest(const httplib::Request& request,
                                        const httplib::Response& out,
                                        const std::string& times) const {
    m_log.write(out.status < 500 ? LogLevel::Info : LogLevel::Error,
                (request.method.empty() ? "-" : request.method) + " " +
                    request.path.substr(0, longestLoggedPath) + " " + std::to_string(out.status) +
                    times);
}

SpeechServer::SpeechServer(HttpApi& api, Log& log, ClientPatience patience)
    : m_listener(std::make_unique<Listener>(api, log, patience)) {}

SpeechServer::~SpeechServer() = default;

tl::expected<void, std::string> SpeechServer::bind(const std::string& host, int port) {
    errno = 0;
    bool isTaken = take(host, port);
    if (!isTaken && host == "::" && errno != EADDRINUSE) isTaken = take("0.0.0.0", port);
    // The library leaves the reason where the system put it, if it came as far as asking that.
    if (!isTaken && errno == 0) return tl::unexpected(std::string("There is no such address"));
    if (!isTaken) return tl::unexpected(std::string(std::strerror(errno)));
    m_listener->lengthenQueue();
    return {};
}

bool SpeechServer::take(const std::string& host, int port) {
    if (port == 0) {
        m_port = m_listener->bind_to_any_port(host);
    } else {
        m_port = m_listener->bind_to_port(host, port) ? port : -1;
    }
    return m_port >= 0;
}

bool SpeechServer::run() {
    m_listener->listen_after_bind();
    return m_listener->end();
}

void SpeechServer::stop() {
    m_listener->requestStop();
}

}  // namespace quietlark
