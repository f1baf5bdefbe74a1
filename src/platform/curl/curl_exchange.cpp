#include "platform/curl/curl_exchange.h"

#include <utility>

#include <sys/socket.h>

#include "platform/curl/curl_failure.h"
#include "platform/http_failure.h"

namespace quietlark {

namespace {

// What has reached this computer and not the handlers: lost when the program is killed. The system
// doubles the first, to have room for its own records (socket(7), SO_RCVBUF), and with small
// records fills all of that. A larger buffer would let a server 50 ms away send more than 4 to 8
// megabytes per second.
constexpr int systemBufferBytes = 192 * 1024;
constexpr qsizetype bufferBytes = 128 * 1024;

// Far more than any server has to say.
constexpr qsizetype maxHeadBytes = 256 * 1024;

/// Proxies are for other computers: they would look for this one's addresses on their own.
QByteArray addressesWithoutProxy() {
    const QByteArray set = qgetenv(qEnvironmentVariableIsSet("no_proxy") ? "no_proxy" : "NO_PROXY");
    return set == "*" ? set : "localhost,127.0.0.0/8,::1," + set;
}

}  // namespace

CurlExchange::CurlExchange(QObject& parent, CurlEventLoop& loop, HttpStreamRequest request,
                           HttpStreams::Handlers handlers)
    : QObject(&parent),
      m_loop(loop),
      m_request(std::move(request)),
      m_handlers(std::move(handlers)),
      m_transfer(curl_easy_init()) {
    // Later, as whoever asks may be within a handler, where libcurl takes no new transfer.
    QMetaObject::invokeMethod(
        this, [this] { send(); }, Qt::QueuedConnection);
}

CurlExchange::~CurlExchange() {
    m_loop.remove(m_transfer);
    curl_easy_cleanup(m_transfer);
}

void CurlExchange::withdraw() {
    m_handlers = {};
    deleteLater();
}

void CurlExchange::send() {
    if (!m_handlers.onEnd) return;
    if (!isHttp(m_request.url)) {
        return finish(tl::unexpected(curlError(m_request.url, HttpFailure::NotAnAddress,
                                               CURLE_UNSUPPORTED_PROTOCOL, "no web address")));
    }
    describe();
    m_body.reserve(bufferBytes);
    m_loop.add(m_transfer, {.onTurn = [this] { handOver(); },
                            .onEnd = [this](CURLcode code) { onDone(code); }});
}

void CurlExchange::describe() {
    const auto set = [this](CURLoption option, auto value) {
        curl_easy_setopt(m_transfer, option, value);
    };
    set(CURLOPT_URL, m_request.url.toEncoded().constData());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    // A signed address holds for what it says to the letter.
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_NOPROXY, addressesWithoutProxy().constData());
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    // As OpenSSL's own programs do, for a mirror with a certificate of its own.
    const QByteArray certificates = qgetenv("SSL_CERT_FILE");
    if (!certificates.isEmpty()) set(CURLOPT_CAINFO, certificates.constData());

    addHeader("Accept:");  // which sends none
    for (const auto& [name, value] : m_request.headers)
        addHeader(name + ": " + value);
    set(CURLOPT_HTTPHEADER, m_headers.get());
    set(CURLOPT_USERAGENT, "Quietlark");

    set(CURLOPT_NOSIGNAL, 1L);
    // A name that is being looked up when a request is withdrawn makes nobody wait.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_ERRORBUFFER, m_errorText);
    set(CURLOPT_BUFFERSIZE, long{bufferBytes});
    set(CURLOPT_SOCKOPTFUNCTION, &CurlExchange::boundSocket);
    set(CURLOPT_HEADERFUNCTION, &CurlExchange::onHeaderLine);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &CurlExchange::onBody);
    set(CURLOPT_WRITEDATA, this);
}

void CurlExchange::addHeader(const QByteArray& line) {
    m_headers.reset(curl_slist_append(m_headers.release(), line.constData()));
}

int CurlExchange::boundSocket(void*, curl_socket_t socket, curlsocktype) {
    // Before there is a connection, so that nothing is ever sent beyond it.
    ::setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &systemBufferBytes, sizeof systemBufferBytes);
    return CURL_SOCKOPT_OK;
}

size_t CurlExchange::onHeaderLine(char* data, size_t, size_t count, void* self) {
    const QByteArray line(data, static_cast<qsizetype>(count));
    return static_cast<CurlExchange*>(self)->takeHeaderLine(line) ? count : 0;
}

size_t CurlExchange::onBody(char* data, size_t, size_t count, void* self) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(count));
    return static_cast<CurlExchange*>(self)->takeBody(bytes) ? count : 0;
}

bool CurlExchange::takeHeaderLine(const QByteArray& line) {
    m_headBytes += line.size();
    if (m_headBytes > maxHeadBytes) return false;
    // Chunks may have headers behind them.
    if (m_hasHead) return true;
    if (line.trimmed().isEmpty()) return takeHead();
    if (line.startsWith("HTTP/")) {
        m_head = {line.simplified().split(' ').value(1).toInt(), {}, {}};
        return true;
    }
    const qsizetype colon = line.indexOf(':');
    if (colon > 0) m_head.headers.emplace_back(line.first(colon), line.sliced(colon + 1).trimmed());
    return true;
}

bool CurlExchange::takeHead() {
    constexpr int firstFinalStatus = 200;
    if (m_head.status < firstFinalStatus) return true;
    m_hasHead = true;
    if (const auto location = m_head.header("Location"); location && m_head.status / 100 == 3) {
        const QUrl target = m_request.url.resolved(QUrl(QString::fromUtf8(*location)));
        if (target.isValid()) m_head.proposal = HttpStreamRequest{target, m_request.headers};
    }
    // A copy, as a handler may withdraw, which empties the originals.
    if (const auto onHead = m_handlers.onHead) onHead(m_head);
    return m_handlers.onEnd != nullptr;
}

bool CurlExchange::takeBody(QByteArrayView bytes) {
    // libcurl gives it in pieces of 16 KiB, and takes it from the network in much larger ones.
    m_body.append(bytes);
    if (m_body.size() >= bufferBytes) handOver();
    return m_handlers.onEnd != nullptr;
}

void CurlExchange::handOver() {
    if (m_body.isEmpty()) return;
    if (const auto onBytes = m_handlers.onBytes) onBytes(m_body);
    m_body.resize(0);
}

void CurlExchange::onDone(CURLcode code) {
    if (code == CURLE_OK) return finish({});
    long systemError = 0;
    curl_easy_getinfo(m_transfer, CURLINFO_OS_ERRNO, &systemError);
    finish(
        tl::unexpected(curlError(m_request.url, meaningOf(code, systemError), code, m_errorText)));
}

void CurlExchange::finish(const tl::expected<void, TransportError>& outcome) {
    const auto onEnd = std::exchange(m_handlers, {}).onEnd;
    deleteLater();
    // Last, as the handler may withdraw or ask again.
    if (onEnd) onEnd(outcome);
}

}  // namespace quietlark
