#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QByteArrayView>
#include <QUrl>
#include <tl/expected.hpp>

#include "platform/cancellable.h"
#include "platform/http_client.h"

namespace quietlark {

using HttpHeader = std::pair<QByteArray, QByteArray>;  ///< name and value

/// A Get whose body may be of any length.
struct HttpStreamRequest {
    QUrl url;
    std::vector<HttpHeader> headers;  ///< beyond what HTTP itself needs

    bool operator==(const HttpStreamRequest&) const = default;
};

/// What an answer says before its body.
struct HttpHead {
    int status = 0;
    std::vector<HttpHeader> headers;
    /// Where the system would go from a redirect by itself, if it can tell.
    std::optional<HttpStreamRequest> proposal = {};

    /// A header's value, without regard to the case of its name; absent when it was not sent.
    [[nodiscard]] std::optional<QByteArray> header(const QByteArray& name) const {
        for (const auto& [key, value] : headers) {
            if (key.compare(name, Qt::CaseInsensitive) == 0) return value;
        }
        return std::nullopt;
    }
};

/// HTTP for bodies that do not fit in memory. Redirects are not followed, bodies not unpacked, and
/// an answer may take as long as it likes. Belongs to the thread that made it.
class HttpStreams {
public:
    struct Handlers {
        std::function<void(const HttpHead&)> onHead;  ///< once, first
        /// Any number of times; the bytes are there until it returns.
        std::function<void(QByteArrayView bytes)> onBytes;
        /// The last call: the body is complete, or why not.
        std::function<void(tl::expected<void, TransportError>)> onEnd;
    };

    virtual ~HttpStreams() = default;

    /// Asks. The handlers run on this thread, never before the call returns; while they do, no
    /// further bytes are taken from the network beyond a small buffer. Destroying the handle, also
    /// from within a handler, withdraws the request.
    [[nodiscard]] virtual Cancellable get(HttpStreamRequest request, Handlers handlers) = 0;
};

}  // namespace quietlark
