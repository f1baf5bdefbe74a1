#pragma once

#include <functional>
#include <map>
#include <memory>

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <curl/curl.h>

namespace quietlark {

/// Lets libcurl work whenever the event loop of the thread that made this finds its sockets ready.
class CurlEventLoop final : public QObject {
public:
    struct Handlers {
        std::function<void()> onTurn;         ///< libcurl has worked, perhaps on this transfer
        std::function<void(CURLcode)> onEnd;  ///< the last call
    };

    CurlEventLoop();
    /// Every transfer has been removed before.
    ~CurlEventLoop() override;
    CurlEventLoop(const CurlEventLoop&) = delete;
    CurlEventLoop& operator=(const CurlEventLoop&) = delete;

    /// Starts a transfer. Not from within a callback of libcurl, nor are the handlers.
    void add(CURL* transfer, Handlers handlers);
    /// Breaks a transfer off, if it is not over yet. Not from within a callback or a handler.
    void remove(CURL* transfer);

private:
    struct DeleteLater {
        void operator()(QObject* object) const { object->deleteLater(); }
    };
    /// Of one socket. They outlive their own news.
    struct Watch {
        std::unique_ptr<QSocketNotifier, DeleteLater> incoming;
        std::unique_ptr<QSocketNotifier, DeleteLater> outgoing;
    };

    static int onSocket(CURL*, curl_socket_t socket, int direction, void* self, void*);
    static int onTimer(CURLM*, long milliseconds, void* self);
    [[nodiscard]] Watch watch(curl_socket_t socket);
    void act(curl_socket_t socket, int event);

    CURLM* m_multi;
    QTimer m_timer;
    std::map<curl_socket_t, Watch> m_watches;
    std::map<CURL*, Handlers> m_transfers;  ///< under way
};

}  // namespace quietlark
