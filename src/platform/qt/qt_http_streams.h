#pragma once

#include <QNetworkAccessManager>

#include "platform/http_stream.h"

namespace quietlark {

/// HTTP by Qt Network, for bodies of any length.
///
/// - A quarter of a mebibyte waits in its buffer at most, and as much in the system's for a near
///   server. That is lost when the program is killed, and some of it when the connection breaks. A
///   near server's first burst may find the system's buffer still larger.
/// - A body that is complete is handed over completely, also when the server has closed long
/// before.
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
