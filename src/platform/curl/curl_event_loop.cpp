#include "platform/curl/curl_event_loop.h"

#include <utility>

namespace quietlark {

CurlEventLoop::CurlEventLoop() : m_multi(curl_multi_init()) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, &CurlEventLoop::onSocket);
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, &CurlEventLoop::onTimer);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
}

CurlEventLoop::~CurlEventLoop() {
    curl_multi_cleanup(m_multi);
}

void CurlEventLoop::add(CURL* transfer, Handlers handlers) {
    m_transfers[transfer] = std::move(handlers);
    curl_multi_add_handle(m_multi, transfer);
}

void CurlEventLoop::remove(CURL* transfer) {
    if (m_transfers.erase(transfer) > 0) curl_multi_remove_handle(m_multi, transfer);
}

int CurlEventLoop::onSocket(CURL*, curl_socket_t socket, int direction, void* self, void*) {
    auto& watches = static_cast<CurlEventLoop*>(self)->m_watches;
    if (direction == CURL_POLL_REMOVE) {
        // The notifiers go later, but the socket is closed now.
        if (const auto watch = watches.extract(socket)) {
            watch.mapped().incoming->setEnabled(false);
            watch.mapped().outgoing->setEnabled(false);
        }
        return 0;
    }
    if (!watches.contains(socket)) {
        watches.emplace(socket, static_cast<CurlEventLoop*>(self)->watch(socket));
    }
    watches[socket].incoming->setEnabled((direction & CURL_POLL_IN) != 0);
    watches[socket].outgoing->setEnabled((direction & CURL_POLL_OUT) != 0);
    return 0;
}

int CurlEventLoop::onTimer(CURLM*, long milliseconds, void* self) {
    auto& timer = static_cast<CurlEventLoop*>(self)->m_timer;
    if (milliseconds < 0) {
        timer.stop();
    } else {
        timer.start(std::chrono::milliseconds(milliseconds));
    }
    return 0;
}

CurlEventLoop::Watch CurlEventLoop::watch(curl_socket_t socket) {
    const auto notifier = [this, socket](QSocketNotifier::Type type, int event) {
        std::unique_ptr<QSocketNotifier, DeleteLater> made(new QSocketNotifier(socket, type));
        connect(made.get(), &QSocketNotifier::activated, this,
                [this, socket, event] { act(socket, event); });
        return made;
    };
    return {notifier(QSocketNotifier::Read, CURL_CSELECT_IN),
            notifier(QSocketNotifier::Write, CURL_CSELECT_OUT)};
}

void CurlEventLoop::act(curl_socket_t socket, int event) {
    int transfersLeft = 0;
    curl_multi_socket_action(m_multi, socket, event, &transfersLeft);
    for (const auto& [transfer, handlers] : m_transfers)
        handlers.onTurn();
    int messagesLeft = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi, &messagesLeft)) {
        if (message->msg != CURLMSG_DONE) continue;
        CURL* transfer = message->easy_handle;
        const CURLcode code = message->data.result;
        const auto onEnd = m_transfers[transfer].onEnd;
        remove(transfer);
        onEnd(code);
    }
}

}  // namespace quietlark
