#include "server/speech_server.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include <httplib.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "server/admission.h"
#include "server/connection_pool.h"
#include "server/library_messages.h"
#include "server/multipart_form.h"
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
    HttpConnection* connection = nullptr;
    std::string contentType = {};
    std::uint64_t announcedBytes = 0;
    std::optional<HttpResponse> refusal = {};
    std::optional<Admission::Ticket> upload = {};  ///< once it is admitted
};
thread_local Visit visit;

/// Begins the answer.
void reply(httplib::Response& out, const HttpResponse& response) {
    visit.connection->beginAnswer();
    fill(out, response);
}

HttpResponse noRoom() {
    return unavailableResponse("Too many recordings are waiting already.");
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
    void prepare(httplib::Request& request);
    void finish();
    bool refuse(const httplib::Request& request, httplib::Response& out) const;
    void answerUpload(const httplib::Request& request, httplib::Response& out,
                      const httplib::ContentReader& read);
    void answer(const httplib::Request& request, httplib::Response& out, FormFields form);
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
    Get(".*", [this](const auto& request, auto& out) { answer(request, out, {}); });
    Post(".*", [this](const auto& request, auto& out, const auto& read) {
        answerUpload(request, out, read);
    });
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
        visit.connection = &connection;
        const bool hasAnswered =
            process_request(connection, left == 1 || m_isStopping, isClosed,
                            [this](httplib::Request& request) { prepare(request); });
        finish();
        if (!hasAnswered || isClosed || m_isStopping || !connection.isRequestComplete()) break;
    }
}

void SpeechServer::Listener::prepare(httplib::Request& request) {
    const HttpHead head = headOf(request);
    const bool isChunked = !head.transferEncoding.empty();
    // A chunked body ends where it says. The library would follow it to wherever that is.
    const std::uint64_t bodyBytes =
        isChunked ? m_api.limits().bodyBytes : head.contentLength.value_or(0);
    visit.connection->expectBody(bodyBytes);
    visit = {.connection = visit.connection,
             .contentType = head.contentType,
             .announcedBytes = head.contentLength.value_or(0),
             .refusal = m_api.refusal(head)};
    if (!visit.refusal && bodyBytes > 0) {
        visit.upload = m_admission.enter(bodyBytes);
        if (!visit.upload) visit.refusal = noRoom();
    }
    // Answers are short: whole and uncompressed is quickest.
    request.headers.erase("Accept-Encoding");
    request.ranges.clear();
    // The library would take the form apart itself, a byte at a time.
    request.headers.erase("Content-Type");
    // A refused body is left unread, and where a chunked one ends only the library knows: no other
    // request can follow them.
    if (isChunked || (bodyBytes > 0 && !visit.upload)) {
        request.headers.erase("Connection");
        request.set_header("Connection", "close");
    }
}

void SpeechServer::Listener::finish() {
    if (visit.upload) m_admission.leave(*visit.upload);
    visit = {};
}

bool SpeechServer::Listener::refuse(const httplib::Request& request, httplib::Response& out) const {
    if (!visit.refusal) return false;
    reply(out, *visit.refusal);
    logRequest(request, out, "");
    return true;
}

void SpeechServer::Listener::answerUpload(const httplib::Request& request, httplib::Response& out,
                                          const httplib::ContentReader& read) {
    std::string body;
    body.reserve(visit.announcedBytes);
    const bool isWhole = read([&](const char* bytes, std::size_t count) {
        if (!visit.upload || !m_admission.receive(*visit.upload, count)) {
            visit.refusal = noRoom();
            return false;
        }
        body.append(bytes, count);
        return true;
    });
    if (refuse(request, out)) return out.set_header("Connection", "close");
    // The library has said what is wrong.
    if (!isWhole) return;
    auto form = multipartFields(visit.contentType, body);
    if (!form) visit.refusal = errorResponse(400, {.message = "The form is broken."});
    if (!refuse(request, out)) answer(request, out, std::move(*form));
}

void SpeechServer::Listener::answer(const httplib::Request& request, httplib::Response& out,
                                    FormFields form) {
    const auto start = std::chrono::steady_clock::now();
    const HttpResponse response = m_api.answer(
        {.method = request.method,
         .path = request.path,
         .form = std::move(form),
         .isAbandoned = [connection = visit.connection] { return connection->hasClientLeft(); }});
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    reply(out, response);
    logRequest(request, out,
               " audio=" + decimals(response.audioSeconds) +
                   "s elapsed=" + decimals(elapsed.count()) + "s");
}

void SpeechServer::Listener::describeError(const httplib::Request& request,
                                           httplib::Response& out) {
    if (!out.body.empty()) return;
    // What is left of such a request is not read, so that no other can follow it.
    out.set_header("Connection", "close");
    reply(out, errorResponse(out.status, {.message = messageFor(out.status)}));
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
