#pragma once

#include <memory>

#include <QByteArrayView>
#include <QObject>
#include <curl/curl.h>

#include "platform/curl/curl_event_loop.h"
#include "platform/http_stream.h"

namespace quietlark {

/// One request of CurlHttpStreams, from its sending to the end of its answer. Deletes itself then,
/// or once it was withdrawn.
class CurlExchange final : public QObject {
public:
    /// Sends `request` on the event loop's next turn. `loop` outlives the exchange.
    CurlExchange(QObject& parent, CurlEventLoop& loop, HttpStreamRequest request,
                 HttpStreams::Handlers handlers);
    ~CurlExchange() override;

    /// Gives the request up; no handler runs any more.
    void withdraw();

private:
    struct FreeList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static int boundSocket(void*, curl_socket_t socket, curlsocktype);
    static size_t onHeaderLine(char* data, size_t, size_t count, void* self);
    static size_t onBody(char* data, size_t, size_t count, void* self);

    void send();
    void describe();
    void addHeader(const QByteArray& line);
    /// False when the transfer is to end.
    [[nodiscard]] bool takeHeaderLine(const QByteArray& line);
    [[nodiscard]] bool takeHead();
    [[nodiscard]] bool takeBody(QByteArrayView bytes);
    void handOver();
    void onDone(CURLcode code);
    void finish(const tl::expected<void, TransportError>& outcome);

    CurlEventLoop& m_loop;
    const HttpStreamRequest m_request;
    HttpStreams::Handlers m_handlers;  ///< empty once the last has run, or it was withdrawn
    CURL* m_transfer;
    std::unique_ptr<curl_slist, FreeList> m_headers;
    char m_errorText[CURL_ERROR_SIZE] = {};
    HttpHead m_head;
    qsizetype m_headBytes = 0;
    bool m_hasHead = false;
    QByteArray m_body;  ///< what has come and was not handed over yet
};

}  // namespace quietlark
