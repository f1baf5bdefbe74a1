#include "transcription/transcription_client.h"

#include <chrono>
#include <utility>

#include <QUuid>

#include "platform/http_client.h"
#include "platform/log.h"
#include "platform/scheduler.h"
#include "transcription/transcribe_log.h"
#include "transcription/transcriber.h"
#include "transcription/utf8.h"

namespace quietlark {

namespace {

// A long recording may take a slow server minutes.
constexpr std::chrono::milliseconds uploadTimeout = std::chrono::seconds(300);

HttpRequest uploadRequest(const ResolvedServer& server, const WavBytes& wav,
                          const QString& language) {
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const QByteArray boundary = "quietlark-" + id.toLatin1();
    return {HttpRequest::Method::Post, server.url, uploadTimeout,
            "multipart/form-data; boundary=" + boundary,
            Transcriber::multipartBody(
                boundary, wav, Transcriber::formFields(server.flavor, server.model, language))};
}

/// The text of an answer, or why it holds none.
TranscriptionClient::Text textOf(const HttpClient::Answer& answer) {
    if (!answer) return tl::unexpected(TranscriberError{answer.error()});
    const auto& [status, body] = *answer;
    if (status == 0) return tl::unexpected(TranscriberError{TranscriberError::InvalidResponse{}});
    const auto bodyText = [&body = body] { return decodeUtf8(body).value_or(QString()); };
    if (status < 200 || status > 299) {
        return tl::unexpected(
            TranscriberError{TranscriberError::RequestFailed{status, bodyText()}});
    }
    const auto field = Transcriber::parseTextField(body);
    return Transcriber::withoutControlCharacters(Transcriber::clean(field ? *field : bodyText()));
}

}  // namespace

TranscriptionClient::TranscriptionClient(HttpClient& http, Scheduler& scheduler, Log& log)
    : m_http(http), m_scheduler(scheduler), m_log(log) {}

Cancellable TranscriptionClient::transcribe(const ResolvedServer& server, const WavBytes& wav,
                                            const QString& language, TextHandler onText) {
    const auto started = m_scheduler.now();
    m_log.write(LogLevel::Info, transcribe_log::startLine(server, wav.size(), language));
    auto onAnswer = [this, started, onText = std::move(onText)](const HttpClient::Answer& answer) {
        Text text = textOf(answer);
        const auto elapsed = m_scheduler.now() - started;
        if (text) {
            m_log.write(LogLevel::Info, transcribe_log::okLine(elapsed, *text));
        } else {
            m_log.write(LogLevel::Error, transcribe_log::failedLine(elapsed, text.error()));
        }
        onText(std::move(text));
    };
    return m_http.send(uploadRequest(server, wav, language), std::move(onAnswer));
}

}  // namespace quietlark
