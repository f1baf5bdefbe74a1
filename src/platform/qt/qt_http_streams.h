#pragma once

#include <QNetworkAccessManager>

#include "platform/http_stream.h"

namespace quietlark {

/// HTTP by Qt Network, for bodies of any length.
///
/// - A quarter of a mebibyte waits in its buffer at most. That, and what the system has not handed
///   over yet, may be lost when the connection is.
/// - A request may be sent up to four times by Qt when connections end without an answer.
/// - The end of a chunked body that is cut short while the buffer is full is not noticed by Qt
///   6.4. Callers have a time-out for that, as for any silence.
class QtHttpStreams final : public HttpStreams {
public:
    QtHttpStreams();

    [[nodiscard]] Cancellable get(HttpStreamRequest request, Handlers handlers) override;

private:
    QNetworkAccessManager m_manager;
};

}  // namespace quietlark
