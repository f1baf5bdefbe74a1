#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/http_client.h"

namespace quietlark {

/// A network that answers when the test says so, or from a script. Every request is recorded.
///
/// Without a script a request stays open until respond() or fail(), which answer the oldest one.
/// With respondTo(), requests of that URL are answered by runAnswers().
class FakeHttpClient final : public HttpClient {
public:
    [[nodiscard]] Cancellable send(HttpRequest request, AnswerHandler onAnswer) override {
        m_requests.push_back(std::move(request));
        const auto pending =
            std::make_shared<Pending>(Pending{m_requests.back().url, std::move(onAnswer)});
        m_open.push_back(pending);
        return Cancellable([weak = std::weak_ptr<Pending>(pending)] {
            if (const auto open = weak.lock()) open->onAnswer = nullptr;
        });
    }

    /// Every request so far, in order.
    [[nodiscard]] const std::vector<HttpRequest>& requests() const { return m_requests; }

    /// The addresses of all requests so far, in order.
    [[nodiscard]] std::vector<QString> requestedUrls() const {
        std::vector<QString> urls;
        for (const HttpRequest& request : m_requests)
            urls.push_back(request.url.toString());
        return urls;
    }

    /// How many requests are under way: neither answered nor withdrawn.
    [[nodiscard]] std::size_t openCount() {
        dropWithdrawn();
        return m_open.size();
    }

    /// Answers the oldest open request; false when there is none.
    bool respond(int status, QByteArray body = {}) {
        if (body.size() > maxBodyBytes) return fail(answerTooLong());
        return answer(HttpResponse{status, std::move(body)});
    }
    bool fail(TransportError error = connectionRefused()) { return answer(tl::unexpected(error)); }

    /// From now on runAnswers() gives this answer to every request of `url`.
    void respondTo(const QString& url, int status, QByteArray body = {}) {
        m_script[url] = HttpResponse{status, std::move(body)};
    }

    /// Answers open requests until none is left: by the script, with a refused connection where it
    /// has nothing.
    void runAnswers() {
        while (openCount() > 0) {
            const auto scripted = m_script.find(m_open.front()->url.toString());
            if (scripted == m_script.end()) {
                fail();
            } else {
                respond(scripted->status, scripted->body);
            }
        }
    }

    [[nodiscard]] static TransportError connectionRefused() {
        return {QStringLiteral("FakeHttpClient"), 1, QStringLiteral("The server refused."), {}};
    }

    [[nodiscard]] static TransportError answerTooLong() {
        return {QStringLiteral("FakeHttpClient"), 2, QStringLiteral("The answer is too long."), {}};
    }

private:
    struct Pending {
        QUrl url;
        AnswerHandler onAnswer;  ///< empty once withdrawn
    };

    void dropWithdrawn() {
        std::erase_if(m_open, [](const auto& pending) { return !pending->onAnswer; });
    }

    bool answer(Answer answer) {
        if (openCount() == 0) return false;
        const auto pending = m_open.front();
        m_open.pop_front();
        const auto onAnswer = std::exchange(pending->onAnswer, nullptr);
        onAnswer(std::move(answer));
        return true;
    }

    std::vector<HttpRequest> m_requests;
    std::deque<std::shared_ptr<Pending>> m_open;
    QMap<QString, HttpResponse> m_script;
};

}  // namespace quietlark
