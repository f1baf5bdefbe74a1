#pragma once

#include <QObject>
#include <QPointer>

#include "platform/http_stream.h"

class QNetworkAccessManager;
class QNetworkReply;

namespace quietlark {

/// One request of QtHttpStreams, from its sending to the end of its answer. Deletes itself then, or
/// once it was withdrawn.
class HttpStreamExchange final : public QObject {
public:
    /// Sends `request` over `manager`, whose child the exchange becomes.
    HttpStreamExchange(QNetworkAccessManager& manager, HttpStreamRequest request,
                       HttpStreams::Handlers handlers);
    ~HttpStreamExchange() override;

    /// Gives the request up; no handler runs any more.
    void withdraw();

private:
    void send(QNetworkAccessManager& manager);
    void takeHead();
    void takeBody();
    void onFinished();
    [[nodiscard]] HttpHead head() const;
    /// Of the body, as far as its head says.
    [[nodiscard]] qint64 promisedBytes() const;
    void finish(const tl::expected<void, TransportError>& outcome);
    void dropReply();

    const HttpStreamRequest m_request;
    HttpStreams::Handlers m_handlers;  ///< empty once the last has run, or it was withdrawn
    bool m_hasHead = false;
    qint64 m_receivedBytes = 0;
    QPointer<QNetworkReply> m_reply;
};

}  // namespace quietlark
