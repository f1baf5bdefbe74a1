#pragma once

#include <functional>

#include <QString>
#include <tl/expected.hpp>

#include "audio/wav.h"
#include "platform/cancellable.h"
#include "transcription/resolved_server.h"
#include "transcription/transcriber_error.h"

namespace quietlark {

class HttpClient;
class Log;
class Scheduler;

/// Sends a recording to a server and brings back its text. Main thread.
class TranscriptionClient {
public:
    using Text = tl::expected<QString, TranscriberError>;
    using TextHandler = std::function<void(Text)>;

    /// `scheduler` is only asked for the time, for the log.
    TranscriptionClient(HttpClient& http, Scheduler& scheduler, Log& log);

    /// Uploads `wav` once, without any retry, and hands the clean text to `onText`; it may be
    /// empty. The text is one line, free of control characters. An empty `language` is not sent.
    [[nodiscard]] Cancellable transcribe(const ResolvedServer& server, const WavBytes& wav,
                                         const QString& language, TextHandler onText);

private:
    HttpClient& m_http;
    Scheduler& m_scheduler;
    Log& m_log;
};

}  // namespace quietlark
