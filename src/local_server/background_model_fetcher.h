#pragma once

#include <functional>
#include <memory>

#include "local_server/model_fetcher.h"
#include "local_server/model_files.h"
#include "local_server/model_source.h"
#include "platform/http_stream.h"
#include "platform/scheduler.h"

namespace quietlark {

/// Fetches the model on another thread, so that neither disk nor network make the main one wait.
class BackgroundModelFetcher final : public ModelFetcher {
public:
    /// Called on the worker's thread, where what it makes also ends.
    using MakeHttp = std::function<std::unique_ptr<HttpStreams>()>;

    /// `worker` runs what is posted to it on the thread for the work, `scheduler` on the main one.
    BackgroundModelFetcher(ModelSource source, ModelFiles files, Scheduler& scheduler,
                           Scheduler& worker, MakeHttp makeHttp);

    [[nodiscard]] Cancellable fetch(Handlers handlers) override;
    void whenStill(std::function<void()> action) override;

private:
    struct Attempt;

    [[nodiscard]] Handlers relayTo(const std::shared_ptr<Handlers>& handlers) const;

    const ModelSource m_source;
    const ModelFiles m_files;
    Scheduler& m_scheduler;
    Scheduler& m_worker;
    const MakeHttp m_makeHttp;
};

}  // namespace quietlark
