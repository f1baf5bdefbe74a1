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
    using EndHandler = std::function<void(CURLcode)>;

    CurlEventLoop();
    /// Every transfer has been removed before.
    ~CurlEventLoop() override;
    CurlEventLoop(const CurlEventLoop&) = delete;
    CurlEventLoop& operator=(const CurlEventLoop&) = delete;

    /// Starts a transfer and calls `onEnd` once it is over. Not from within a callback of libcurl.
    void add(CURL* transfer, EndHandler onEnd);
    /// Breaks a transfer off, if it is not over yet. Not from within a callback of libcurl.
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
    std::map<CURL*, EndHandler> m_transfers;  ///< under way
};

}  // namespace quietlark
