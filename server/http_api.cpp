#include "server/http_api.h"

#include <algorithm>
#include <array>
#include <span>

#include "audio/wav_file.h"
#include "server/json_text.h"

namespace quietlark {
namespace {

constexpr double maximumAudioSeconds = 3600;

struct Route {
    std::string_view method;
    std::string_view path;
};

constexpr std::array<Route, 4> routes = {{
    {"GET", "/"},
    {"POST", "/inference"},
    {"GET", "/v1/models"},
    {"POST", "/v1/audio/transcriptions"},
}};

constexpr std::string_view indexPage = R"(<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>quietlark-server</title></head>
<body>
<h1>quietlark-server</h1>
<p>This server turns recorded speech into text. Send it a WAV file as the field "file" of a form:</p>
<ul>
<li>POST /inference, as to the server of whisper.cpp</li>
<li>POST /v1/audio/transcriptions, as to an OpenAI-compatible server; GET /v1/models lists its model</li>
</ul>
</body>
</html>
)";

const Route* routeOf(std::string_view path) {
    const auto found = std::ranges::find(routes, path, &Route::path);
    return found == routes.end() ? nullptr : &*found;
}

std::string_view fieldOf(const HttpRequest& request, std::string_view name) {
    const auto found = request.form.find(name);
    return found == request.form.end() ? std::string_view() : found->second;
}

HttpResponse failure(EngineError error) {
    if (error == EngineError::Stopping) return errorResponse(503, "The server is stopping.");
    return errorResponse(500, "The recording could not be transcribed.");
}

}  // namespace

HttpApi::HttpApi(SpeechEngine& engine) : m_engine(engine) {}

std::optional<HttpResponse> HttpApi::refusal(const HttpHead& head) {
    const Route* route = routeOf(head.path);
    if (!route) return errorResponse(404, "There is nothing at this address.");
    const std::string_view method = head.method == "HEAD" ? "GET" : std::string_view(head.method);
    if (method != route->method) {
        auto response = errorResponse(405, "This address does not take this method.");
        response.allowedMethod = route->method;
        return response;
    }
    if (method != "POST") return std::nullopt;
    if (!head.contentLength) return errorResponse(411, "The request does not say how long it is.");
    if (*head.contentLength > maximumBodyBytes)
        return errorResponse(413, "The upload is larger than 64 MiB.");
    if (!head.contentEncoding.empty() && head.contentEncoding != "identity")
        return errorResponse(415, "The upload is compressed, which this server does not read.");
    if (!head.contentType.starts_with("multipart/form-data"))
        return errorResponse(415, "The upload is not a form of the type multipart/form-data.");
    return std::nullopt;
}

HttpResponse HttpApi::answer(const HttpRequest& request) {
    if (request.path == "/")
        return {.contentType = "text/html; charset=utf-8", .body = std::string(indexPage)};
    if (request.path == "/v1/models") return models();
    return transcription(request);
}

HttpResponse HttpApi::models() const {
    return {.contentType = "application/json",
            .body = R"({"object":"list","data":[{"id":)" + jsonString(m_engine.modelId()) +
                    R"(,"object":"model","owned_by":"quietlark","labels":["transcription"]}]})"};
}

HttpResponse HttpApi::transcription(const HttpRequest& request) {
    const std::string_view format = fieldOf(request, "response_format");
    if (!format.empty() && format != "json" && format != "text")
        return errorResponse(400, "The response format is neither json nor text.");
    if (!m_engine.understands(fieldOf(request, "language")))
        return errorResponse(400, "This server's speech model does not understand this language.");
    const auto file = request.form.find("file");
    if (file == request.form.end()) return errorResponse(400, "The form has no field named file.");
    return transcribe(file->second, format == "text");
}

HttpResponse HttpApi::transcribe(std::string_view file, bool asPlainText) {
    const auto wav =
        WavFile::parse({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()});
    if (!wav) return errorResponse(400, wav.error().description);
    const double seconds = static_cast<double>(wav->frames()) / wav->sampleRateHz();
    if (seconds > maximumAudioSeconds)
        return errorResponse(413, "The recording is longer than an hour.");

    const auto text = m_engine.transcribe(wav->convertedTo(SpeechEngine::sampleRateHz));
    HttpResponse response =
        !text ? failure(text.error())
        : asPlainText
            ? HttpResponse{.contentType = "text/plain; charset=utf-8", .body = *text + "\n"}
            : HttpResponse{.contentType = "application/json",
                           .body = R"({"text":)" + jsonString(*text) + "}"};
    response.audioSeconds = seconds;
    return response;
}

}  // namespace quietlark
