#include "local_server/background_model_fetcher.h"

#include <optional>
#include <utility>

#include "local_server/model_transfer.h"

namespace quietlark {

/// Made, used and ended on the worker's thread.
struct BackgroundModelFetcher::Attempt {
    std::unique_ptr<HttpStreams> http;
    std::optional<ModelTransfer> transfer;
};

BackgroundModelFetcher::BackgroundModelFetcher(ModelSource source, ModelFiles files,
                                               Scheduler& scheduler, Scheduler& worker,
                                               MakeHttp makeHttp)
    : m_source(std::move(source)),
      m_files(std::move(files)),
      m_scheduler(scheduler),
      m_worker(worker),
      m_makeHttp(std::move(makeHttp)) {}

Cancellable BackgroundModelFetcher::fetch(Handlers handlers) {
    auto attempt = std::make_shared<Attempt>();
    auto listener = std::make_shared<Handlers>(std::move(handlers));
    m_worker.post([attempt, source = m_source, files = m_files, makeHttp = m_makeHttp,
                   worker = &m_worker, relay = relayTo(listener)] {
        attempt->http = makeHttp();
        attempt->transfer.emplace(source, files, *attempt->http, *worker, relay);
        attempt->transfer->start();
    });
    return Cancellable([attempt, listener = std::move(listener), worker = &m_worker]() mutable {
        listener.reset();
        worker->post([attempt = std::move(attempt)] {
            attempt->transfer->cancel();
            attempt->transfer.reset();
            attempt->http.reset();
        });
    });
}

void BackgroundModelFetcher::whenStill(std::function<void()> action) {
    // The worker gets to it after what it has been told before.
    m_worker.post(
        [scheduler = &m_scheduler, action = std::move(action)] { scheduler->post(action); });
}

ModelFetcher::Handlers BackgroundModelFetcher::relayTo(
    const std::shared_ptr<Handlers>& handlers) const {
    // Whoever listens may be gone by the time the news gets there.
    const auto relay = [scheduler = &m_scheduler, listener = std::weak_ptr(handlers)](
                           auto handler, auto... news) {
        scheduler->post([listener, handler, news...] {
            if (const auto there = listener.lock()) ((*there).*handler)(news...);
        });
    };
    return {
        .onProgress = [relay](qint64 written,
                              qint64 expected) { relay(&Handlers::onProgress, written, expected); },
        .onEnd = [relay](const Outcome& outcome) { relay(&Handlers::onEnd, outcome); }};
}

}  // namespace quietlark
