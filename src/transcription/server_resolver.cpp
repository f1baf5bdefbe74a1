#include "transcription/server_resolver.h"

#include <array>
#include <memory>
#include <utility>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QObject>

#include "platform/http_client.h"
#include "transcription/model_list.h"
#include "transcription/utf8.h"

namespace quietlark {

namespace {

const std::array prefixes{QLatin1String("/api/v1"), QLatin1String("/v1")};
constexpr QLatin1String modelsPath("/models");
constexpr QLatin1String openaiUploadPath("/audio/transcriptions");
constexpr QLatin1String whispercppUploadPath("/inference");

std::optional<QUrl> validUrl(const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty() || url.host().isEmpty()) return std::nullopt;
    return url;
}

std::optional<ResolvedServer> serverAt(ServerFlavor flavor, const QString& uploadAddress,
                                       std::optional<QString> model = std::nullopt) {
    const auto url = validUrl(uploadAddress);
    if (!url) return std::nullopt;
    return ResolvedServer{flavor, *url, std::move(model)};
}

/// The body of an answer that says exactly "OK"; absent for every other outcome.
std::optional<QByteArray> okBody(const HttpClient::Answer& answer) {
    if (!answer || answer->status != 200) return std::nullopt;
    return answer->body;
}

/// An answer's JSON, with an object or an array on the outside.
std::optional<QJsonValue> jsonOf(const HttpClient::Answer& answer) {
    const auto body = okBody(answer);
    if (!body) return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(*body);
    if (document.isObject()) return document.object();
    if (document.isArray()) return document.array();
    return std::nullopt;
}

std::optional<QString> modelOf(const HttpClient::Answer& answer) {
    const auto json = jsonOf(answer);
    return json ? pickModel(*json) : std::nullopt;
}

bool isWhisperCppIndex(const HttpClient::Answer& answer) {
    const auto body = okBody(answer);
    const auto page = body ? decodeUtf8(*body) : std::nullopt;
    if (!page) return false;
    const QString text = page->toLower();
    return text.contains(QLatin1String("whisper.cpp")) && text.contains(whispercppUploadPath);
}

/// One resolution under way: each method is an event, and asks the next question or finishes.
/// Destroying it withdraws the question that is open.
class Resolution final : public QObject {
public:
    Resolution(HttpClient& http, std::chrono::milliseconds timeout,
               ServerResolver::ResolvedHandler onResolved)
        : m_http(http), m_timeout(timeout), m_onResolved(std::move(onResolved)) {}

    void start(const QString& address) {
        m_base = address.trimmed();
        while (m_base.endsWith(u'/'))
            m_base.chop(1);
        if (m_base.isEmpty()) {
            later([this] { finish(std::nullopt); });
        } else if (m_base.endsWith(openaiUploadPath)) {
            const QString root = m_base.chopped(openaiUploadPath.size());
            ask(root + modelsPath, &Resolution::onModelsOfGivenUpload);
        } else if (m_base.endsWith(whispercppUploadPath)) {
            later([this] { finish(serverAt(ServerFlavor::whispercpp, m_base)); });
        } else {
            askForModels();
        }
    }

private:
    using AnswerEvent = void (Resolution::*)(const HttpClient::Answer&);

    void onModelsOfGivenUpload(const HttpClient::Answer& answer) {
        finish(serverAt(ServerFlavor::openai, m_base, modelOf(answer)));
    }

    void askForModels() { ask(prefixedBase() + modelsPath, &Resolution::onModels); }

    void onModels(const HttpClient::Answer& answer) {
        if (auto model = modelOf(answer)) {
            const QString upload = prefixedBase() + openaiUploadPath;
            if (auto server = serverAt(ServerFlavor::openai, upload, std::move(model))) {
                return finish(std::move(server));
            }
        }
        // Asked once more on purpose: a list without a suitable model still tells what this is.
        ask(prefixedBase() + modelsPath, &Resolution::onModelsAgain);
    }

    void onModelsAgain(const HttpClient::Answer& answer) {
        if (jsonOf(answer)) {
            const QString upload = prefixedBase() + openaiUploadPath;
            if (auto server = serverAt(ServerFlavor::openai, upload)) {
                return finish(std::move(server));
            }
        }
        ++m_prefix;
        if (m_prefix < prefixes.size()) return askForModels();
        ask(m_base + u'/', &Resolution::onIndex);
    }

    void onIndex(const HttpClient::Answer& answer) {
        if (!isWhisperCppIndex(answer)) return finish(std::nullopt);
        finish(serverAt(ServerFlavor::whispercpp, m_base + whispercppUploadPath));
    }

    [[nodiscard]] QString prefixedBase() const { return m_base + prefixes[m_prefix]; }

    /// Sends a question; an address that is none counts as one that did not answer.
    void ask(const QString& address, AnswerEvent onAnswer) {
        const auto url = validUrl(address);
        if (!url) {
            later([this, onAnswer] { (this->*onAnswer)(tl::unexpected(TransportError{})); });
            return;
        }
        m_question = m_http.send(
            {HttpRequest::Method::Get, *url, m_timeout, {}, {}},
            [this, onAnswer](const HttpClient::Answer& answer) { (this->*onAnswer)(answer); });
    }

    /// The last thing done here: the handler may destroy this resolution.
    void finish(std::optional<ResolvedServer> server) {
        const auto onResolved = std::exchange(m_onResolved, nullptr);
        onResolved(std::move(server));
    }

    /// For what needs no question: an answer must not come before resolveServer() has returned.
    template <typename Event>
    void later(Event event) {
        QMetaObject::invokeMethod(this, event, Qt::QueuedConnection);
    }

    HttpClient& m_http;
    std::chrono::milliseconds m_timeout;
    ServerResolver::ResolvedHandler m_onResolved;
    QString m_base;
    std::size_t m_prefix = 0;
    Cancellable m_question;
};

}  // namespace

ServerResolver::ServerResolver(HttpClient& http) : m_http(http) {}

Cancellable ServerResolver::resolveServer(const QString& address, std::chrono::milliseconds timeout,
                                          ResolvedHandler onResolved) {
    // Shared only because a std::function must be copyable.
    auto resolution = std::make_shared<Resolution>(m_http, timeout, std::move(onResolved));
    resolution->start(address);
    return Cancellable([resolution = std::move(resolution)]() mutable { resolution.reset(); });
}

}  // namespace quietlark
