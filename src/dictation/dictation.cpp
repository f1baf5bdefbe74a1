#include "dictation/dictation.h"

#include <utility>

#include <QPointer>

namespace quietlark {

using Case = DictationState::Case;

Dictation::Dictation(Settings settings, Recorder& recorder, TranscriptionService& transcription,
                     Paster& paster, Scheduler& scheduler)
    : m_settings(std::move(settings)),
      m_recorder(recorder),
      m_transcription(transcription),
      m_paster(paster),
      m_scheduler(scheduler) {}

void Dictation::beginRecord() {
    if (m_state.kind == Case::recording || m_state.kind == Case::transcribing) return;
    if (const auto started = m_recorder.start())
        setState({Case::recording, {}});
    else
        fail(started.error().localizedDescription);
}

void Dictation::endRecord() {
    if (m_state.kind != Case::recording) return;
    m_wav = m_recorder.stop();
    // Queued ahead of the change of state, so that the upload does not wait for icons to be drawn.
    m_scheduler.post([self = QPointer(this)] {
        if (self) self->transcribeAndPaste();
    });
    setState({Case::transcribing, {}});
}

void Dictation::toggle() {
    switch (m_state.kind) {
        case Case::idle:
        case Case::error:
        case Case::unreachable:
            return beginRecord();
        case Case::recording:
            return endRecord();
        case Case::transcribing:
            return;
    }
}

void Dictation::invalidateCache() {
    m_cached.reset();
    m_cachedFor.reset();
    if (m_state.kind == Case::error || m_state.kind == Case::unreachable)
        setState({Case::idle, {}});
}

void Dictation::transcribeAndPaste() {
    if (!m_wav) return fail(tr("No audio captured"));

    const auto baseURL = m_transcription.endpoint.baseURL(m_settings().serverMode);
    if (!baseURL) return failUnreachable(tr("No server configured"));

    if (m_cachedFor != baseURL) m_cached.reset();
    if (m_cached) return send();

    m_request = m_transcription.resolver.resolveServer(
        *baseURL, ServerResolver::usualTimeout,
        [this, baseURL = *baseURL](std::optional<ResolvedServer> server) {
            onResolved(baseURL, std::move(server));
        });
}

void Dictation::onResolved(const QString& baseURL, std::optional<ResolvedServer> server) {
    m_cached = std::move(server);
    m_cachedFor = baseURL;
    if (m_cached)
        send();
    else
        failUnreachable(tr("Couldn't reach server at ") + baseURL);
}

void Dictation::send() {
    m_request = m_transcription.client.transcribe(
        *m_cached, *m_wav, m_settings().language,
        [this](const tl::expected<QString, TranscriberError>& text) { onTranscribed(text); });
    m_wav.reset();
}

void Dictation::onTranscribed(const tl::expected<QString, TranscriberError>& text) {
    if (!text) return fail(text.error().localizedDescription());
    m_paster.paste(*text, [self = QPointer(this)](const tl::expected<void, Unavailable>& posted) {
        if (self) self->onPasted(posted);
    });
}

void Dictation::onPasted(const tl::expected<void, Unavailable>& posted) {
    if (posted)
        setState({Case::idle, {}});
    else
        fail(posted.error().reason);
}

void Dictation::setState(const DictationState& state) {
    if (state == std::exchange(m_state, state)) return;
    m_scheduler.post([self = QPointer(this), state] {
        if (self) Q_EMIT self->onStateChange(state);
    });
}

void Dictation::fail(const QString& message) {
    setState(DictationState::error(message));
    flashErrorToIdle();
}

void Dictation::failUnreachable(const QString& message) {
    m_wav.reset();
    setState(DictationState::unreachable(message));
    flashUnreachableToIdle();
}

// Compares the case alone, so that an error which follows another soon may be cleared by the
// first one's timer.
void Dictation::flashToIdle(Case flashed, std::chrono::milliseconds delay) {
    m_scheduler.after(delay, this, [this, flashed] {
        if (m_state.kind == flashed) setState({Case::idle, {}});
    });
}

}  // namespace quietlark
