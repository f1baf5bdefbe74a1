#pragma once

#include <QNetworkAccessManager>

#include "platform/http_stream.h"

namespace quietlark {

/// HTTP by Qt Network, for bodies of any length. Half a mebibyte waits in its buffer at most. A
/// request may be sent up to four times by Qt when connections end without an answer.
class QtHttpStreams final : public HttpStreams {
public:
    QtHttpStreams();

    [[nodiscard]] Cancellable get(HttpStreamRequest request, Handlers handlers) override;

private:
    QNetworkAccessManager m_manager;
};

}  // namespace quietlark
