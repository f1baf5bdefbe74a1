#include "server/http_api.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "audio/wav_file.h"
#include "server/json_text.h"

namespace quietlark {
namespace {

struct Route {
    std::string_view method;
    std::string_view path;
};

constexpr std::string_view modelList = "/v1/models";
constexpr std::string_view modelPrefix = "/v1/models/";

constexpr std::array<Route, 5> routes = {{
    {"GET", "/"},
    {"GET", "/health"},
    {"POST", "/inference"},
    {"GET", modelList},
    {"POST", "/v1/audio/transcriptions"},
}};
constexpr Route modelRoute = {"GET", modelPrefix};

constexpr std::string_view indexPage = R"(<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>quietlark-server</title></head>
<body>
<h1>quietlark-server</h1>
<p>This server turns recorded speech into text. Send it a WAV file as the field "file" of a form:</p>
<ul>
<li>POST /inference, as to the server of whisper.cpp; GET /health says whether it is ready</li>
<li>POST /v1/audio/transcriptions, as to an OpenAI-compatible server; GET /v1/models lists its model</li>
</ul>
</body>
</html>
)";

/// For the log alone: nobody is there to read it. Web servers call it so, though no standard does.
constexpr int statusClientHasLeft = 499;

const Route* routeOf(std::string_view path) {
    const auto found = std::ranges::find(routes, path, &Route::path);
    if (found != routes.end()) return &*found;
    return path.starts_with(modelPrefix) ? &modelRoute : nullptr;
}

HttpResponse answerWith(Transcript& transcript, const TranscriptionForm& form, double seconds) {
    if (form.wantsWords && !transcript.words)
        return badFieldResponse("timestamp_granularities[]",
                                "This server's speech engine does not know the times of words.");
    if (!form.wantsWords) transcript.words.reset();
    return {.contentType = std::string(contentTypeOf(form.format)),
            .body = formatted(transcript, form.format, seconds)};
}

/// An error that would come again.
HttpResponse notToBeRetried(HttpResponse response) {
    response.isWorthRetrying = false;
    return response;
}

HttpResponse tooLong() {
    return errorResponse(
        413, {.message = "The recording is longer than this server takes.", .parameter = "file"});
}

HttpResponse failure(EngineError error) {
    switch (error) {
        case EngineError::Stopping:
            return unavailableResponse("The server is stopping.");
        case EngineError::Busy:
            return unavailableResponse("The server is busy with other recordings.");
        case EngineError::Abandoned:
            return errorResponse(statusClientHasLeft, {.message = "The client has left."});
        case EngineError::Unavailable:
            return unavailableResponse("The speech engine is not running.");
        case EngineError::CannotTranslate:
            return badFieldResponse("translate", "This server's speech engine does not translate.");
        case EngineError::TimedOut:
            return notToBeRetried(errorResponse(
                503, {.message = "The recording took too long to transcribe.", .code = "timeout"}));
        case EngineError::Failed:
            break;
    }
    return notToBeRetried(
        errorResponse(500, {.message = "The recording could not be transcribed."}));
}

HttpResponse json(std::string body) {
    return {.contentType = "application/json", .body = std::move(body)};
}

/// One entry of the list of models.
std::string modelObject(const std::string& id) {
    return R"({"id":)" + jsonString(id) +
           R"(,"object":"model","created":0,"owned_by":"quietlark","labels":["transcription"]})";
}

}  // namespace

HttpApi::HttpApi(SpeechEngine& engine) : HttpApi(engine, Settings()) {}

HttpApi::HttpApi(SpeechEngine& engine, Settings settings)
    : m_engine(engine), m_settings(std::move(settings)) {}

std::optional<HttpResponse> HttpApi::refusal(const HttpHead& head) const {
    if (auto refusal = foreignPageRefusal(head, m_settings.audience, m_settings.ownNames))
        return refusal;
    const Route* route = routeOf(head.path);
    if (!route) return errorResponse(404, {.message = "There is nothing at this address."});
    const std::string_view method = head.method == "HEAD" ? "GET" : std::string_view(head.method);
    if (method != route->method) {
        auto response = errorResponse(405, {.message = "This address does not take this method."});
        response.allowedMethod = route->method;
        return response;
    }
    return method == "POST" ? uploadRefusal(head) : std::nullopt;
}

std::optional<HttpResponse> HttpApi::uploadRefusal(const HttpHead& head) const {
    // Who gives two lengths may mean one to us and the other to somebody before us.
    if (!head.transferEncoding.empty() && head.contentLength)
        return errorResponse(400, {.message = "The request says twice how long it is."});
    if (!head.transferEncoding.empty() && head.transferEncoding != "chunked")
        return errorResponse(501, {.message = "The upload is encoded, which this server does not "
                                              "read."});
    if (head.transferEncoding.empty() && !head.contentLength)
        return errorResponse(411, {.message = "The request does not say how long it is."});
    if (head.contentLength.value_or(0) > m_settings.limits.bodyBytes)
        return errorResponse(413, {.message = "The upload is larger than this server takes."});
    if (!head.contentEncoding.empty() && head.contentEncoding != "identity")
        return errorResponse(
            415, {.message = "The upload is compressed, which this server does not read."});
    if (!isMultipartForm(head.contentType))
        return errorResponse(
            415, {.message = "The upload is not a form of the type multipart/form-data."});
    return std::nullopt;
}

HttpResponse HttpApi::answer(const HttpRequest& request) {
    if (request.path == "/")
        return {.contentType = "text/html; charset=utf-8", .body = std::string(indexPage)};
    if (request.path == "/health") return health();
    if (request.path == modelList)
        return json(R"({"object":"list","data":[)" + modelObject(m_engine.modelId()) + "]}");
    if (request.path.starts_with(modelPrefix))
        return model(request.path.substr(modelPrefix.size()));
    return transcription(request);
}

HttpResponse HttpApi::health() const {
    if (m_engine.isReady()) return json(R"({"status":"ok"})");
    HttpResponse response = json(R"({"status":"loading model"})");
    response.status = 503;
    return response;
}

HttpResponse HttpApi::model(std::string_view id) const {
    if (id == m_engine.modelId()) return json(modelObject(m_engine.modelId()));
    return errorResponse(404, {.message = "This server does not have this model.",
                               .parameter = "model",
                               .code = "model_not_found"});
}

HttpResponse HttpApi::transcription(const HttpRequest& request) {
    auto form = TranscriptionForm::parse(request);
    if (!form) return form.error();
    if (form->language.empty()) form->language = m_settings.language;
    if (!m_engine.understands(form->language))
        return badFieldResponse("language",
                                "This server's speech model does not understand this language.");
    return transcribe(*form, request.isAbandoned);
}

HttpResponse HttpApi::transcribe(const TranscriptionForm& form, std::function<bool()> isAbandoned) {
    const auto wav =
        WavFile::parse({reinterpret_cast<const std::uint8_t*>(form.file.data()), form.file.size()});
    if (!wav) return badFieldResponse("file", wav.error().description);
    const double seconds = static_cast<double>(wav->frames()) / wav->sampleRateHz();
    if (seconds > static_cast<double>(m_settings.limits.audio.count())) return tooLong();

    auto transcript = m_engine.transcribe(
        {.samples = SpeechSamples([&wav] { return wav->convertedTo(SpeechEngine::sampleRateHz); }),
         .language = form.language,
         .prompt = form.prompt,
         .temperature = form.temperature,
         .translates = form.translates,
         .deadline = std::chrono::steady_clock::now() + m_settings.limits.time,
         .isAbandoned = std::move(isAbandoned)});
    HttpResponse response =
        transcript ? answerWith(*transcript, form, seconds) : failure(transcript.error());
    response.audioSeconds = seconds;
    return response;
}

}  // namespace quietlark
