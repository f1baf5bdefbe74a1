#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/http_stream.h"

namespace quietlark {

/// A network that says what the test says, to the last request. Every request is recorded.
class FakeHttpStreams final : public HttpStreams {
public:
    [[nodiscard]] Cancellable get(HttpStreamRequest request, Handlers handlers) override {
        m_requests.push_back(std::move(request));
        m_open = std::make_shared<Handlers>(std::move(handlers));
        return Cancellable([this, weak = std::weak_ptr<Handlers>(m_open)] {
            if (weak.lock() == m_open) m_open.reset();
        });
    }

    /// Every request so far, in order.
    [[nodiscard]] const std::vector<HttpStreamRequest>& requests() const { return m_requests; }
    [[nodiscard]] bool isOpen() const { return m_open != nullptr; }

    /// A header of the last request; null when it was not sent.
    [[nodiscard]] QByteArray sent(const QByteArray& name) const {
        return HttpHead{0, m_requests.back().headers}.header(name).value_or(QByteArray());
    }

    /// These do nothing once the last request is over or was withdrawn.
    void head(const HttpHead& head) {
        if (const auto open = m_open) open->onHead(head);
    }
    void bytes(const QByteArray& bytes) {
        if (const auto open = m_open) open->onBytes(bytes);
    }
    void end() { finish({}); }
    void fail(const QString& description) {
        finish(
            tl::unexpected(TransportError{QStringLiteral("FakeHttpStreams"), 1, description, {}}));
    }

private:
    void finish(const tl::expected<void, TransportError>& outcome) {
        if (const auto open = std::exchange(m_open, nullptr)) open->onEnd(outcome);
    }

    std::vector<HttpStreamRequest> m_requests;
    std::shared_ptr<Handlers> m_open;
};

}  // namespace quietlark
