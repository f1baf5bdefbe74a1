#include "local_server/model_transfer.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QStorageInfo>

#include "local_server/model_install.h"
#include "local_server/redirect_policy.h"

namespace quietlark {

namespace {

// As browsers do (the Fetch standard, "HTTP-redirect fetch").
constexpr int maxRedirects = 20;

HttpStreamRequest request(const QUrl& url, const std::optional<RangeAsked>& asked) {
    // Ranges and digests are of the file itself, not of a packed form of it.
    HttpStreamRequest result{url, {{"Accept-Encoding", "identity"}}};
    if (asked) {
        result.headers.emplace_back("Range", "bytes=" + QByteArray::number(asked->firstByte) + '-');
        result.headers.emplace_back("If-Range", asked->validator);
    }
    return result;
}

}  // namespace

ModelTransfer::ModelTransfer(ModelSource source, ModelFiles files, HttpStreams& http,
                             Scheduler& scheduler, ModelFetcher::Handlers handlers)
    : m_source(std::move(source)),
      m_files(std::move(files)),
      m_http(http),
      m_scheduler(scheduler),
      m_handlers(std::move(handlers)) {}

void ModelTransfer::start() {
    m_received.emplace(m_files, m_source);
    if (const auto mistake = m_source.mistake()) return finish(tl::unexpected(*mistake));
    auto lock = DirectoryLock::tryLock(m_files.directory());
    if (!lock) return refuse(lock.error());
    m_lock.emplace(std::move(*lock));
    // By another process, since the last look.
    if (m_files.isInstalled()) return finish({});
    if (QFileInfo(m_files.active()).isDir()) {
        return failInstall(tr("%1 is a directory.").arg(m_files.active()));
    }
    m_received->restore();
    // What is not known for certain, the server is asked first.
    if (const auto reason = lackOfSpace(m_source.lengthBytes)) {
        return finish(tl::unexpected(*reason));
    }
    hashWhatIsHere();
}

void ModelTransfer::cancel() {
    m_handlers = {};
    m_exchange.cancel();
    if (m_received) m_received->keep();
    m_received.reset();
    m_lock.reset();
}

void ModelTransfer::refuse(std::error_code reason) {
    if (reason != std::errc::operation_would_block) {
        return failInstall(QString::fromStdString(reason.message()));
    }
    finish(tl::unexpected(tr("The model is being downloaded by another Quietlark already.")));
}

std::optional<QString> ModelTransfer::lackOfSpace(std::optional<qint64> totalBytes) const {
    const qint64 neededBytes = totalBytes.value_or(0) - m_received->bytes();
    const QStorageInfo storage(m_files.directory());
    if (!storage.isValid() || neededBytes <= storage.bytesAvailable()) return std::nullopt;
    const QLocale locale;
    return tr("There is not enough free space for the model: %1 more are needed in %2, and %3 are "
              "free.")
        .arg(locale.formattedDataSize(neededBytes, 2, QLocale::DataSizeSIFormat),
             m_files.directory(),
             locale.formattedDataSize(storage.bytesAvailable(), 2, QLocale::DataSizeSIFormat));
}

void ModelTransfer::hashWhatIsHere() {
    if (!m_received) return;
    if (!m_received->hashNextPiece()) return ask();
    // In pieces, so that it can be cancelled.
    m_scheduler.post([self = QPointer(this)] {
        if (self) self->hashWhatIsHere();
    });
}

void ModelTransfer::ask() {
    m_startedAt = m_scheduler.now();
    m_lastActivity = m_startedAt;
    const qint64 bytes = m_received->bytes();
    const auto total = m_received->totalBytes();
    if (bytes > 0 && bytes == total) {
        reportProgress();
        return install();
    }
    // What is here counts once the server has said that it goes on from there.
    askFor(bytes > 0 ? std::optional(RangeAsked{bytes, m_received->validator(), total})
                     : std::nullopt);
    watchTime();
}

void ModelTransfer::askFor(std::optional<RangeAsked> range) {
    m_asked = std::move(range);
    m_redirectCount = 0;
    m_firstRequest = request(m_source.url, m_asked);
    send(m_firstRequest);
}

void ModelTransfer::send(HttpStreamRequest request) {
    m_exchange = m_http.get(
        std::move(request),
        {.onHead = [this](const HttpHead& head) { onHead(head); },
         .onBytes = [this](QByteArrayView bytes) { onBytes(bytes); },
         .onEnd = [this](const tl::expected<void, TransportError>& outcome) { onEnd(outcome); }});
}

void ModelTransfer::onHead(const HttpHead& head) {
    m_lastActivity = m_scheduler.now();
    if (auto next = redirected(head, m_firstRequest)) {
        if (++m_redirectCount <= maxRedirects) return send(std::move(*next));
        return finish(tl::unexpected(tr("The server redirected the download too many times.")));
    }
    std::visit([this](const auto& answer) { onAnswer(answer); },
               readAnswer(head, m_source, m_asked));
}

void ModelTransfer::onAnswer(const WholeModel& answer) {
    begin(answer.totalBytes,
          [&] { return m_received->beginAnew(answer.validator, answer.totalBytes); });
}

void ModelTransfer::onAnswer(const RestOfModel& answer) {
    if (begin(answer.totalBytes, [&] { return m_received->beginRest(answer.totalBytes); }))
        reportProgress();
}

void ModelTransfer::onAnswer(const OtherModel&) {
    m_received->discard();
    askFor(std::nullopt);
}

void ModelTransfer::onAnswer(const RefusedModel& answer) {
    failInstall(answer.reason);
}

bool ModelTransfer::begin(std::optional<qint64> totalBytes,
                          const std::function<FileOutcome()>& open) {
    // What is here counts, also where it is about to make room.
    if (const auto reason = lackOfSpace(totalBytes)) {
        finish(tl::unexpected(*reason));
        return false;
    }
    const FileOutcome begun = open();
    if (!begun) failInstall(begun.error());
    return begun.has_value();
}

std::optional<qint64> ModelTransfer::expectedBytes() const {
    const auto promised = m_received->totalBytes();
    return promised ? promised : m_source.lengthBytes;
}

void ModelTransfer::onBytes(QByteArrayView bytes) {
    const auto total = expectedBytes();
    if (m_received->bytes() + bytes.size() > total.value_or(std::numeric_limits<qint64>::max())) {
        m_received->discard();
        return failInstall(tr("The server sent more than the %1 bytes of the model.").arg(*total));
    }
    const FileOutcome written = m_received->append(bytes);
    if (!written) return failInstall(written.error());
    m_lastActivity = m_scheduler.now();
    reportProgress();
}

void ModelTransfer::reportProgress() {
    m_handlers.onProgress(m_received->bytes(), m_received->totalBytes().value_or(-1));
}

void ModelTransfer::onEnd(const tl::expected<void, TransportError>& outcome) {
    if (!outcome) return finish(tl::unexpected(outcome.error().description));
    install();
}

void ModelTransfer::watchTime() {
    if (!m_received) return;
    const auto now = m_scheduler.now();
    const auto idleEnd = m_lastActivity + m_source.idleTimeout;
    const auto end = m_startedAt + m_source.totalTimeout;
    if (now >= idleEnd) return finish(tl::unexpected(tr("The server did not answer in time.")));
    if (now >= end) return finish(tl::unexpected(tr("The download took too long.")));
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(std::min(idleEnd, end) - now);
    m_scheduler.after(wait, this, [this] { watchTime(); });
}

void ModelTransfer::install() {
    m_exchange.cancel();
    const qint64 bytes = m_received->bytes();
    const auto total = expectedBytes();
    if (bytes == 0) return failInstall(tr("The server sent an empty file."));
    if (bytes != total.value_or(bytes)) {
        return failInstall(
            tr("The server sent %1 bytes, but the model has %2.").arg(bytes).arg(*total));
    }
    const auto digest = m_received->seal();
    if (!digest) return failInstall(digest.error());
    if (m_source.sha256.value_or(*digest) != *digest) {
        m_received->discard();
        return failInstall(tr("What arrived is not the published model; its checksum differs."));
    }
    const FileOutcome installed = installModel(m_files);
    if (!installed) return failInstall(installed.error());
    finish({});
}

void ModelTransfer::failInstall(const QString& reason) {
    finish(tl::unexpected(tr("Install failed: ") + reason));
}

void ModelTransfer::finish(const ModelFetcher::Outcome& outcome) {
    m_exchange.cancel();
    m_received.reset();
    m_lock.reset();
    // Last, as the handler may destroy this.
    if (const auto onEnd = std::exchange(m_handlers, {}).onEnd) onEnd(outcome);
}

}  // namespace quietlark
